"""The table of whole runs that scripts/bench times: what each is given, its arguments, and what it must leave."""
from dataclasses import dataclass, replace

CELLS = 4000 * 4000


@dataclass
class AtLeast:
    """A size that depends on the values: text, or packed cells."""
    bytes: int


@dataclass
class Run:
    name: str
    about: str
    inputs: dict  # the name in the folder of the run, and the input that stands there
    arguments: str
    outputs: dict  # each file that the run must leave, and its size; headers of .flt need no line
    threads: int = 0  # 0: one for each processor


def depths(count, size=4000):
    return {"d%d.flt" % i: "depth_%d_%d.flt" % (size, i) for i in range(1, count + 1)}


def wide(size):
    return "" if size == 4000 else ", {0:,} x {0:,} cells".format(size)


def words(inputs):
    return " ".join(inputs)


def extremes(flag, count, size, source):
    inputs = depths(count, size)
    cells = 4 * size * size
    outputs = {"o.flt": cells, **({"o_src.flt": cells, "o_src_legend.csv": AtLeast(40)} if source else {})}
    name = "%s%s%s" % (flag, "" if size == 4000 else "_%d" % size, "_source" if source else "")
    return Run(name, "`-%s` of %d, %s the source%s" % (flag, count, "with" if source else "without", wide(size)), inputs,
               "-%s %s -out o.flt%s" % (flag, words(inputs), "" if source else " -src"), outputs)


def difference(size):
    cells = 4 * size * size
    return Run("dif" if size == 4000 else "dif_%d" % size, "`-dif` with wet/dry" + wide(size), depths(2, size),
               "-dif d1.flt d2.flt -out o.flt", {"o.flt": cells, "o_wd.flt": cells})


def to_text(size):
    return Run("conv_to_asc" + ("" if size == 4000 else "_%d" % size), "`-conv`, .flt to .asc" + wide(size), depths(1, size),
               "-conv d1.flt", {"d1.asc": AtLeast(8 * size * size)})


def one(name, about, arguments, outputs, **more):
    """A run on one depth grid of 4000 x 4000 cells."""
    return Run(name, about, {**depths(1), **more}, arguments, outputs)


def statistics(name, flag, kinds):
    inputs = depths(8)
    outputs = {"o_%s.flt" % kind: 4 * CELLS for kind in kinds}
    return Run(name, "`-%s` of 8" % flag, inputs, "-%s %s -out o -flt" % (flag, words(inputs)),
               {**outputs, "o_Src_legend.csv": AtLeast(40)})


STATISTICS = ["%s_%s" % (kind, part) for kind in ("Min", "Max", "Mean", "Median") for part in ("Val", "Src")]


def remap(name, about, flags, outputs):
    return Run(name, about, {"l.flt": "level_800x5_1.flt", "dem.flt": "ground_4000_0.flt"},
               "-remap %s-wl l.flt -dem dem.flt" % flags, outputs)


def marks(where):
    return one("cp" if where == "all" else "cp_tenth",
               "`-cp` of 10,000 points %s" % ("all over" if where == "all" else "in a tenth of the grid"),
               "-cp m.mif d1.flt -cpsd20",
               {name: AtLeast(100_000) for name in ("m_Res.mif", "m_Res.mid", "m_Cn.mif", "m_Cn.mid", "m.csv")},
               **{"m.mif": "marks_%s.mif" % where})


def damages(where, form, objects="polygons"):
    name = "damages%s%s%s" % ("" if objects == "polygons" else "_points", "" if form == "mif" else "_shp",
                              "" if where == "all" else "_tenth")
    outputs = {"b_Damages.csv": AtLeast(500_000)}
    if form == "mif":
        outputs.update({"b_Damages." + extension: AtLeast(100_000) for extension in ("mif", "mid")})
    else:
        outputs.update({"b_Damages_%s.%s" % (kind, extension): AtLeast(1)
                        for kind in "PR" for extension in ("shp", "shx", "dbf", "prj")})
        outputs["b_Damages_R.shp"] = AtLeast(2_000_000)
    about = "`-damages` of 20,000 %s %s, .%s" % (objects, "all over" if where == "all" else "in a tenth of the grid", form)
    layer = "%s_%s.%s" % ("buildings" if objects == "polygons" else "houses", where, form)
    return Run(name, about, {"level.flt": "level_4000_1.flt", "b." + form: layer, "curve.csv": "curve.csv",
                             "c.dmg": "control_%s.dmg" % form}, "-damages c.dmg", outputs)


def by_threads(runs, names, threads, suffix, about):
    return [replace(run, name=run.name + suffix, about=run.about + ", " + about, threads=threads) for run in runs if run.name in names]


USUAL = [
    extremes("max", 8, 4000, True),
    extremes("max", 8, 4000, False),
    extremes("min", 8, 4000, True),
    extremes("min", 8, 4000, False),
    difference(4000),
    Run("multiply", "`-multiply` of 2", depths(2), "-multiply d1.flt d2.flt -out o.flt", {"o.flt": 4 * CELLS}),
    one("cd", "`-cd`", "-cd0.5 d1.flt -out o.flt", {"o.flt": 4 * CELLS}),
    one("trans", "`-trans_m`, `-trans_c`", "-trans_m1.5 -trans_c0.25 d1.flt -out o.flt", {"o.flt": 4 * CELLS}),
    one("classify", "`-classify`, 10 classes", "-classify bins.csv d1.flt -out o.flt", {"o.flt": 4 * CELLS},
        **{"bins.csv": "bins_10.csv"}),
    one("trim", "`-trim` by a region over half of the grid", "-trim r.mif d1.flt -out o.flt", {"o.flt": AtLeast(4 * CELLS // 2)},
        **{"r.mif": "region.mif"}),
    one("fe", "`-fe`", "-fe d1.flt -out o.flt", {"o.flt": 4 * CELLS}),
    Run("fuzzy", "`-fuzzy` of 4", depths(4), "-fuzzy %s -out o.flt" % words(depths(4)), {"o.flt": 4 * CELLS}),
    one("count", "`-count`", "-count d1.flt", {"d1_count.txt": AtLeast(10)}),
    one("resize5", "`-resize5`", "-resize5 d1.flt -out o.flt", {"o.flt": 4 * CELLS // 25}),
    one("histogram", "`-histogram`, 40 bins", "-histogram bins.csv d1.flt", {"d1_histogram.csv": AtLeast(400)},
        **{"bins.csv": "bins_40.csv"}),
    statistics("statMedian", "statMedian", ["Median_Val", "Median_Src"]),
    statistics("statAll", "statAll", [*STATISTICS, "Frac_Wet"]),
    Run("conv_to_flt", "`-conv`, .asc to .flt", {"a.asc": "depth_4000_1.asc"}, "-conv a.asc", {"a.flt": 4 * CELLS}),
    to_text(4000),
    remap("remap_tin", "`-remap` by TIN, coarse cells 5 times as wide", "",
          {"l_remap_h.flt": 4 * CELLS, "l_remap_d.flt": 4 * CELLS}),
    remap("remap_idw", "`-remap` by IDW, `-bd50`", "-bd50 ",
          {"l_remap_h.flt": 4 * CELLS, "l_remap_d.flt": 4 * CELLS, "l_h_IDW.flt": 4 * 800 * 800}),
    Run("nc", "`-nc` of 8, deflate 1", depths(8), "-nc %s -out o.nc" % words(depths(8)), {"o.nc": AtLeast(CELLS)}),
    Run("xyz", "`-xyz` of 4 million points", {"p.xyz": "points_2000.xyz"}, "-xyz p.xyz -out o.flt", {"o.flt": 4 * 2000 * 2000}),
    Run("rf_idw", "`-rf`, 4 steps of 2000 x 2000 cells by IDW",
        {"r.rfc": "rain.rfc", "gauges.mif": "gauges.mif", "hyetograph.csv": "hyetograph.csv"}, "-rf r.rfc",
        {**{"r_%s.flt" % kind: 4 * 2000 * 2000 for kind in ("t1.", "t2.", "t3.", "t4.", "total")}, "r_index.csv": AtLeast(40)}),
    marks("all"),
    marks("tenth"),
    damages("all", "mif"),
    damages("all", "shp"),
    damages("tenth", "mif"),
    damages("all", "mif", "points"),
    damages("tenth", "mif", "points"),
]

# How the time grows with the cells.
SIZES = [1000, 2000, 12000, 20000]
GROWING = [*(extremes("max", 4, size, True) for size in SIZES), difference(12000), *(to_text(size) for size in SIZES)]

# What more processors are worth.
COMPUTING = ["max_source", "dif", "statAll", "conv_to_flt", "conv_to_asc", "remap_tin", "remap_idw", "nc", "xyz", "rf_idw", "cp", "damages"]

RUNS = [*USUAL, *GROWING, *by_threads(USUAL, COMPUTING, 1, "_alone", "one thread")]
