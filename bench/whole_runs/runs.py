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


def named(name, size):
    return name if size == 4000 else "%s_%d" % (name, size)


def words(inputs):
    return " ".join(inputs)


def extremes(flag, count, size, source):
    inputs = depths(count, size)
    cells = 4 * size * size
    outputs = {"o.flt": cells, **({"o_src.flt": cells, "o_src_legend.csv": AtLeast(40)} if source else {})}
    name = named(flag, size) + ("_source" if source else "")
    return Run(name, "`-%s` of %d, %s the source%s" % (flag, count, "with" if source else "without", wide(size)), inputs,
               "-%s %s -out o.flt%s" % (flag, words(inputs), "" if source else " -src"), outputs)


def difference(size):
    cells = 4 * size * size
    return Run(named("dif", size), "`-dif` with wet/dry" + wide(size), depths(2, size),
               "-dif d1.flt d2.flt -out o.flt", {"o.flt": cells, "o_wd.flt": cells})


def to_text(size):
    return Run(named("conv_to_asc", size), "`-conv`, .flt to .asc" + wide(size), depths(1, size),
               "-conv d1.flt", {"d1.asc": AtLeast(8 * size * size)})


def to_cells(size):
    return Run(named("conv_to_flt", size), "`-conv`, .asc to .flt" + wide(size), {"a.asc": "depth_%d_1.asc" % size}, "-conv a.asc",
               {"a.flt": 4 * size * size})


def one(name, about, arguments, outputs, **more):
    """A run on one depth grid of 4000 x 4000 cells."""
    return Run(name, about, {**depths(1), **more}, arguments, outputs)


def statistics(flag, kinds, size):
    inputs = depths(8, size)
    outputs = {"o_%s.flt" % kind: 4 * size * size for kind in kinds}
    return Run(named(flag, size), "`-%s` of 8%s" % (flag, wide(size)), inputs, "-%s %s -out o -flt" % (flag, words(inputs)),
               {**outputs, "o_Src_legend.csv": AtLeast(40)})


def all_statistics(size):
    kinds = ["%s_%s" % (kind, part) for kind in ("Min", "Max", "Mean", "Median") for part in ("Val", "Src")]
    return statistics("statAll", [*kinds, "Frac_Wet"], size)


def remap(name, about, flags, size, **more):
    return Run(named(name, size), about + wide(size),
               {"l.flt": "level_%dx5_1.flt" % (size // 5), "dem.flt": "ground_%d_0.flt" % size}, "-remap %s-wl l.flt -dem dem.flt" % flags,
               {"l_remap_h.flt": 4 * size * size, "l_remap_d.flt": 4 * size * size, **more})


def by_tin(size):
    return remap("remap_tin", "`-remap` by TIN, coarse cells 5 times as wide", "", size)


def netcdf(size):
    inputs = depths(8, size)
    return Run(named("nc", size), "`-nc` of 8, deflate 1" + wide(size), inputs, "-nc %s -out o.nc" % words(inputs),
               {"o.nc": AtLeast(size * size)})


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
    statistics("statMedian", ["Median_Val", "Median_Src"], 4000),
    all_statistics(4000),
    to_cells(4000),
    to_text(4000),
    by_tin(4000),
    remap("remap_idw", "`-remap` by IDW, `-bd50`", "-bd50 ", 4000, **{"l_h_IDW.flt": 4 * 800 * 800}),
    netcdf(4000),
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
GROWING = [*(extremes("max", 4, size, True) for size in SIZES), difference(12000), *(to_text(size) for size in SIZES),
           *(to_cells(size) for size in SIZES[:3]), *(by_tin(size) for size in SIZES[:3]),
           *(all_statistics(size) for size in (1000, 2000, 8000)), *(netcdf(size) for size in (1000, 2000, 8000))]

# What more processors are worth.
RUNS = [*USUAL, *GROWING, *(replace(run, name=run.name + "_alone", about=run.about + ", one thread", threads=1) for run in USUAL)]
