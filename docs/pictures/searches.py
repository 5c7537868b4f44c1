#!/usr/bin/python3
"""Draws cp.png, lp.png, brkline.png and na.png of docs/operations: what the tool searches and finds in the valley."""
import numpy
from osgeo import gdal

from drawing import (BLUE, GREEN, INK, ORANGE, RED, VIOLET, chart, class_keys, dot_key, dots, features, figure, key_below, line_key,
                     lines, main, map_of, pyplot, run, save, scale_bar, show, styles, table, write_layer)

PICTURES = ("cp.png", "lp.png", "brkline.png", "na.png")
RIVER = 293200, 6178900, 293750, 6179200


def draw_cp(path):
    """Marks by the edge of the water, the wet cells that they took, and the circles searched."""
    x, y = features("marks.mif")[1][1][0]
    marks = [(x - 61.6, y + 48.3), (x - 13.2, y + 56.7), (x + 27.4, y + 21.1), (x + 72.3, y + 52.4)]
    write_layer("edge.mif", "Point", ["Observed Float", "Label Char(20)"], [(f'9.0,"mark {i}"', [mark])
                                                                             for i, mark in enumerate(marks)])
    run("-cp", "edge.mif", "-cpsd50", "level_1pct_24h.asc")
    made, axes = figure(5.5)
    map_of(axes, (x - 110, y - 5, x + 110, y + 95), "Flood marks and the wet cells that they are compared with")
    wet = styles.Style("depth", "bands", (styles.Class(numpy.inf, "#86c1e3", "wet cell"),))
    show(axes, "depth_1pct_24h.asc", wet)
    angles = numpy.radians(numpy.arange(0, 361, 30))
    for mark in marks:
        lines(axes, [numpy.array(mark) + 25 * numpy.column_stack([numpy.cos(angles), numpy.sin(angles)])], INK, 1.2)
    for record, vertices in features("edge_Cn.mif"):
        if record["distance"] < 99999:
            lines(axes, [vertices], RED, 2)
            dots(axes, vertices[:1], BLUE, 60)
    dots(axes, marks, RED, 80)
    key_below(axes, [dot_key(RED, "flood mark"), line_key(INK, "where it looks (-cpsd50)", 1.2),
                     dot_key(BLUE, "north-east corner of the cell that it takes"), *class_keys(wet)], ncol=4,
              columnspacing=1.2, handletextpad=0.5)
    save(made, path)


def draw_lp(path):
    """Search lines across the river, the inverts and the banks."""
    run("-lp", "river.mif", "ground.asc", "-lpmd50", "-cpsd100", "-check")
    made = pyplot.figure(figsize=(10, 9), dpi=100, layout="constrained")
    axes = made.subplot_mosaic([["plan"], ["profile"]], height_ratios=(1.75, 1))
    map_of(axes["plan"], RIVER, "Search lines across a river, and what is found on them", scale=False)
    scale_bar(axes["plan"], RIVER, "north-east")  # clear of the banks
    lines(axes["plan"], [features("river.mif")[0][1]], BLUE, 2)
    marks = {"Invert": BLUE, "Left Bank": RED, "Right Bank": ORANGE}
    check = features("river_LP_check.mif")
    for record, vertices in check:
        if len(vertices) == 2:
            lines(axes["plan"], [vertices], "white" if record["Type"] == "Invert" else "#606060", 1.2, halo=False)
    for record, vertices in check:
        if len(vertices) == 1:
            dots(axes["plan"], vertices, marks[record["Type"]], 55)
    key_below(axes["plan"], [line_key(BLUE, "river"), line_key("#606060", "search line", 1.2), *(dot_key(ink, name.lower()) for name, ink in marks.items())], ncol=5)
    rows = table("river_main.csv")
    for name, ink in marks.items():
        axes["profile"].plot(*zip(*[(float(row["Chainage"]), float(row[name])) for row in rows if float(row[name]) < 9999]), color=ink,
                             linewidth=1.8, label=name.lower())
    chart(axes["profile"], "river_main.csv: the whole river", "chainage (m)", "height (m)")
    axes["profile"].legend(ncol=3)
    save(made, path)


def draw_brkline(path):
    """A bank by circles and a bed by searches across it."""
    river = features("river.mif")[0][1]
    write_layer("ridges.mif", "Pline", ["Z Float", "dZ Float", "Width Float", "Options Char(20)"],
                [('0,40,50,"Max"', river[2:7] + (0, 60)), ('0,30,80,"Perp Min"', river[2:7])])
    gdal.VectorTranslate("ridges.shp", "ridges.mif")  # GDAL does not read a check layer that is a .mif
    run("-brkline", "ridges.shp", "ground.asc", "-check")
    made, axes = figure(6.6)
    map_of(axes, RIVER, "A bank by circles, and a bed by lines across it")
    lines(axes, [vertices for _, vertices in features("ridges_check_R.shp")], INK, 1.2, halo=False)
    lines(axes, [vertices for _, vertices in features("ridges_check_L.shp")], GREEN, 1.2, halo=False)
    inks = {"Max": (RED, VIOLET), "Perp Min": (BLUE, ORANGE)}
    for record, vertices in features("ridges_brkline_L.shp"):
        lines(axes, [vertices], inks[record["Options"]][0], 2)
        dots(axes, vertices, inks[record["Options"]][0], 30)
    for record, vertices in features("ridges_check_P.shp"):
        dots(axes, vertices, inks[record["Options"]][1], 60, marker="D")
    key_below(axes, [line_key(RED, "bank (Max)"), line_key(INK, "its circles", 1.2), dot_key(VIOLET, "highest cell", marker="D"),
                     line_key(BLUE, "bed (Perp Min)"), line_key(GREEN, "lines across", 1.2),
                     dot_key(ORANGE, "lowest cell", marker="D")], ncol=6, columnspacing=1.2, handletextpad=0.5)
    save(made, path)


def draw_na(path):
    """A region, the corners that lie in it, and its table."""
    ring = [(293690, 6178470), (293800, 6178350), (293960, 6178420), (294010, 6178600), (293840, 6178640), (293690, 6178470)]
    columns = ["ID Char(50)", "A Char(2)", "B Char(8)", *(f"{name} Char(20)" for name in "CDEFGH"), "I Float", "J Float", "Skew Float"]
    write_layer("basin.mif", "Region", columns, [('"basin.csv"' + ',""' * 8 + ",0,0,0", ring)])
    run("-na", "basin.mif", "ground.asc")
    made, (plan, curve) = figure(4.6, 1, 2)
    map_of(plan, (293650, 6178320, 294050, 6178680), "The region, and the corners inside it")
    from matplotlib.path import Path as Outline
    corners = numpy.array([(x, y) for x in range(293655, 294050, 5) for y in range(6178325, 6178680, 5)])
    inside = corners[Outline(ring).contains_points(corners)]
    plan.scatter(*inside.T, s=2, color=BLUE, zorder=5)
    lines(plan, [ring], RED, 2)
    rows = [(float(row["Area"]) / 1e4, float(row["Height"])) for row in table("basin.csv")]
    curve.plot(*zip(*rows), color=BLUE, marker="o", markersize=4, linewidth=1.8)
    chart(curve, "basin.csv", "area at and below the height (hectares)", "height (m)")
    curve.set_xlim(0, None)
    save(made, path)


def draw(pictures):
    for name, one in zip(PICTURES, (draw_cp, draw_lp, draw_brkline, draw_na)):
        one(pictures / name)


if __name__ == "__main__":
    main(draw)
