"""Whole runs on the real grids and layers beside the checkout: every operation, both kinds of layers, both grid formats."""
import glob
import os


class Row:
    """A run: the files it is given (relative to the folder of the data), its arguments, and texts made for it."""

    def __init__(self, files, arguments, texts, folders):
        self.files = files
        self.arguments = arguments
        self.texts = texts
        self.folders = folders


MEREWETHER_LEVELS = "merewether/level_{small,medium,large}.asc"
BAYOU_LEVELS = "bayou/level_{10pct,2pct,1pct,0p2pct}.asc"
CLASSES = "Limit,Name\n18,Low\n22,Medium\n30,High\n"
COLOURS = "Limit,Name,R,G,B\n18,Low,0,0,255\n22,Medium,0,255,0\n30,High,255,0,0\n"
SYMBOLS = "Up to,Shape,Colour,Size\n-0.3,35,255,12\n0.3,35,65280,12\n99999,35,16711680,12\n"
LAYERS = (".mif", ".shp")


def damages(layer, method):
    """A control file of flood damages."""
    return ("Region Inspection Method == " + method + "\nRead GIS Buildings == buildings" + layer +
            "\nRead Curve House == curve_house.csv\nRead Curve Large == curve_large.csv\n"
            "Read Result 0.005 == level_large.asc\nRead Result % 10 == level_small.asc\n"
            "Read Result % 2 == level_medium.asc\n")


def network(layer, more=""):
    """A control file of a network."""
    return ("Read GIS Branch == branches" + layer + "\nRead GIS XS == sections" + layer +
            "\nSet XS dx == 5\nRead Grid Z == dem.asc\nWrite Check == On\n" + more)


def rainfall(names, cell, form, method):
    """A control file of rainfall, over the extent of the gauges."""
    return ("RF GRID Cell Size == %g\nRF GRID Size (X,Y) == 3500, 6000\nRF GRID Origin == 303000, 6192500\n" % cell +
            "RF Grid Format == " + form + "\nMaximum RF Locations == 60\n" +
            "".join("Rainfall Hyetograph G%s == rf_%s.csv\n" % (name, name) for name in names) + method)


def points(dem):
    """Every 7th cell of the top of a grid as a text of points."""
    lines = dem.split("\n")
    size = float(lines[4].split()[1])
    west, south = float(lines[2].split()[1]), float(lines[3].split()[1])
    rows = [line.split() for line in lines[6:66]]
    return "".join("%.3f,%.3f,%s\n" % (west + size * (column + 0.5), south + size * (60 - row - 0.5), cell)
                   for row, cells in enumerate(rows) for column, cell in enumerate(cells[:80]))


def expand(data, patterns):
    """The files that patterns with * and {a,b} name, below the folder of the data."""
    names = []
    for pattern in patterns.split():
        head, brace, rest = pattern.partition("{")
        middle, _, tail = rest.partition("}")
        for word in middle.split(",") if brace else ("",):
            names += sorted(os.path.relpath(path, data) for path in glob.glob(os.path.join(data, head + word + tail)))
    return names


def text_of(data, name):
    """A text file of the data."""
    with open(os.path.join(data, name), encoding="latin-1") as source:
        return source.read()


def rows(data):
    """The table, as a list of Row."""
    table = []

    def run(patterns, *lines, texts=None, folders=()):
        files = expand(data, patterns)
        for line in lines:
            table.append(Row(files, line.split(), texts or {}, folders))

    run("merewether/dem.asc", "-b -conv dem.asc", "-b -fe dem.asc", "-b -fe dem.asc -flt", "-b -count dem.asc",
        "-b -count -cd20 dem.asc", "-b -cd20 dem.asc", "-b -cd20.5 dem.asc -flt", "-b -trans_m0.3048 -trans_c-1.5 dem.asc -decimal5",
        "-b -resize4 dem.asc", "-b -resize3 -rm_min dem.asc -flt", "-b -resize7 -rm_max dem.asc", "-b -nc dem.asc")
    run("delta/dem_bin.*", "-b -conv dem_bin.flt", "-b -conv dem_bin.flt -decimal9", "-b -fe dem_bin.flt", "-b -resize5 dem_bin.flt",
        "-b -trans_m2 dem_bin.flt -asc", "-b -nc dem_bin.flt -nc_comp9 -nc_shuffle0")
    run("formats/{ehdr11,pixel,nodata}*", "-b -conv ehdr11.flt", "-b -conv pixel_per_line.asc", "-b -conv nodata_int.asc",
        "-b -max pixel_per_line.asc", "-b -fe nodata_int.asc -flt")
    for grids in (MEREWETHER_LEVELS, BAYOU_LEVELS):
        run(grids, "-b -max level_*.asc", "-b -min level_*.asc -flt", "-b -max level_*.asc -src -out top.asc", "-b -fuzzy level_*.asc",
            "-b -statAll level_*.asc", "-b -statRankAll -flt level_*.asc", "-b -statRank2 -statMean level_*.asc",
            "-b -nc level_*.asc -out all", "-b -nc -nc_part1 level_*.asc", "-b -conv level_*.asc")
    run(MEREWETHER_LEVELS, "-b -dif level_large.asc level_small.asc", "-b -dif level_large.asc level_small.asc -change -flt",
        "-b -dif level_large.asc level_small.asc -nowetdry -change", "-b -multiply level_large.asc level_medium.asc")
    run("merewether/{depth,velocity}_large.asc", "-b -multiply depth_large.asc velocity_large.asc -decimal6",
        "-b -cd0.5 depth_large.asc velocity_large.asc")
    for text, flags in ((CLASSES, ("", "-flt", "-grc")), (COLOURS, ("-RGB", "-RGB -grc", "-RGB -asc"))):
        run("merewether/dem.asc", *("-b -classify c.csv dem.asc " + flag for flag in flags), texts={"c.csv": text})
    run("merewether/dem.asc", "-b -histogram c.csv dem.asc", texts={"c.csv": CLASSES})
    for layer in LAYERS:
        sampling(run, layer)
        areas(run, layer)
    nodal_areas(run, data)
    remap(run)
    run("", "-b -xyz p.xyz", "-b -xyz p.xyz -flt -out grid", texts={"p.xyz": points(text_of(data, "delta/dem.asc"))})
    for layer in LAYERS:
        rain(run, data, layer)
    return table


def sampling(run, layer):
    """Points, lines and sections on grids."""
    run("merewether/flood_marks.* merewether/level_medium.asc", "-b -cp flood_marks%s level_medium.asc" % layer,
        "-b -cp flood_marks%s level_medium.asc -cpsd40 -cpmm30 -config c.csv" % layer, texts={"c.csv": SYMBOLS})
    run("merewether/channel.* merewether/dem.asc", "-b -lp channel%s dem.asc -lpmd20 -cpsd60" % layer,
        "-b -lp channel%s dem.asc -check" % layer)
    run("delta/main_rivers.* delta/dem.asc", "-b -lp main_rivers%s dem.asc -lpmd500" % layer)
    run("merewether/breaklines.* merewether/dem.asc", "-b -brkline breaklines%s dem.asc -check" % layer)
    run("bayou/{sections,branches,dem}.*", "-b -xs sections%s dem.asc -branch branches%s" % (layer, layer),
        "-b -xs sections%s dem.asc -mat dem.asc -default_n3" % layer)
    for more in ("", "Branch Bendiness == On\nOutput Nwk == all_nwk.mif\nOutput XS == all_xs.shp\n",
                 "Write NWK == Off\nRead Grid Mat == dem.asc\n"):
        run("bayou/{sections,branches,dem}.*", "-b -nbc n.nbc", texts={"n.nbc": network(layer, more)}, folders=("csv",))


def areas(run, layer):
    """Regions on grids."""
    run("bayou/regions.* bayou/dem.asc", "-b -trim regions%s dem.asc" % layer, "-b -trim regions%s dem.asc -flt -out part" % layer)
    run("delta/lakes.* delta/dem_bin.*", "-b -trim lakes%s dem_bin.flt -decimal2" % layer)
    run("rain/gauge_areas.* delta/dem.asc", "-b -trim gauge_areas%s dem.asc" % layer)
    for method in ("Max", "Avg"):
        run("merewether/{buildings,curve,level}*", "-b -damages c.dmg", "-b -damages c.dmg -out d.shp",
            texts={"c.dmg": damages(layer, method)})


def nodal_areas(run, data):
    """The first two regions by the bayou as nodes of a network: the third reaches over the edge of the grid."""
    head, _, objects = text_of(data, "bayou/regions.mif").partition("Columns")
    regions = objects.partition("Data")[2].split("Region")
    columns = "Columns 12\n" + "".join("  c%d %s\n" % (i, "Char(50)" if i < 9 else "Float") for i in range(12))
    for count in (2, 3):
        layer = head + columns + "Data\n\n" + "".join("Region" + region for region in regions[1:count + 1])
        records = "".join("%d.csv,a,b,c,d,e,f,g,h,0,0,%d\n" % (i, i) for i in range(count))
        run("bayou/dem.asc", "-b -na n.mif dem.asc", texts={"n.mif": layer, "n.mid": records})


def remap(run):
    """Levels of a coarse grid on a fine terrain."""
    for place, level in (("merewether", "level_large_coarse"), ("merewether", "level_small_coarse"), ("bayou", "level_1pct_coarse")):
        files = "%s/dem.asc %s/%s.asc" % (place, place, level)
        run(files, "-b -remap -wl %s.asc -dem dem.asc" % level, "-b -remap -flt -bd40 -wl %s.asc -dem dem.asc" % level,
            "-b -remap -idw_npt4 -fb0.2 -bd20 -wl %s.asc -dem dem.asc" % level,
            "-b -remap -idw_npt6 -ext %s.asc -wl %s.asc -dem dem.asc" % (level, level),
            "-b -remap -tin -wl %s.asc -dem dem.asc %s.asc" % (level, level))


def rain(run, data, layer):
    """Rainfall by each method."""
    names = [record.split(",")[0].strip('"G') for record in text_of(data, "rain/gauge_points.mid").split()]
    corners = [line.split()[1:] for line in text_of(data, "rain/gauge_points.mif").split("\n") if line.startswith("Point")]
    triangles = [corners[i:i + 3] for i in range(len(corners) - 2)]
    head = text_of(data, "rain/gauge_points.mif").partition("Data")[0] + "Data\n\n"
    texts = {"t.mif": head + "".join("Region 1\n4\n" + "".join(" ".join(corner) + "\n" for corner in triangle + triangle[:1])
                                     for triangle in triangles),
             "t.mid": "".join('"%d",1,1\n' % i for i in range(len(triangles)))}
    read_points = "Read GIS RF Points == gauge_points%s\n" % layer
    methods = ("RF Interpolation Method == Polygon\nRead GIS RF Polygon == gauge_areas%s\n" % layer,
               "RF Interpolation Method == TIN\nRead GIS RF Triangle == t.mif\n" + read_points,
               "RF Interpolation Method == IDW\nIDW Max Points == 4\n" + read_points,
               "RF Interpolation Method == IDW\nIDW Exponent == 3\nIDW Max Distance == 2500\n" + read_points)
    for form in ("ASC", "FLT", "NC"):
        for method in methods:
            run("rain/series/*.csv rain/gauge_points.* rain/gauge_areas.*", "-b -rf c.rfc",
                texts={"c.rfc": rainfall(names, 100, form, method), **texts})
