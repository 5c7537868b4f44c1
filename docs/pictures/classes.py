#!/usr/bin/python3
"""Draws classify.png and histogram.png of docs/operations: classes of depth on the map, and the area of each."""
from pathlib import Path

import numpy
from drawing import Patch, VALLEY, chart, figure, key_beside, main, map_of, run, save, show, styles, table

PICTURES = ("classify.png", "histogram.png")
CLASSES = ((0.3, "to 0.3 m", "#c7e9c0"), (0.6, "to 0.6 m", "#fee391"), (1.2, "to 1.2 m", "#fe9929"), (2, "to 2 m", "#e34a33"),
           (99, "deeper", "#7a0177"))
CELL_AREA = 25  # m2


def draw(pictures):
    Path("classes.csv").write_text("Limit,Name\n" + "".join(f'{limit},"{name}"\n' for limit, name, _ in CLASSES), encoding="ascii")
    run("-classify", "classes.csv", "depth_1pct_6h.asc", "-out", "depth_class.asc")
    run("-histogram", "classes.csv", "depth_1pct_6h.asc")
    style = styles.Style("source", "values", tuple(styles.Class(number, colour, f"{number}: {name}")
                                                   for number, (_, name, colour) in enumerate(CLASSES, 1)))
    made, axes = figure(4.3)
    map_of(axes, VALLEY, "depth_class.asc: the number of the class in each cell")
    show(axes, "depth_class.asc", style)
    key_beside(axes, [Patch(facecolor=one.colour, edgecolor="#555555", label=one.label) for one in style.classes])
    save(made, pictures / PICTURES[0])

    rows = table("depth_1pct_6h_histogram.csv")[:len(CLASSES)]
    areas = numpy.array([float(row["Count"]) for row in rows]) * CELL_AREA / 1e4
    made, axes = figure(3.8)
    chart(axes, "Flooded area by depth, 1 % storm of 6 h", "depth", "area (hectares)")
    axes.grid(axis="x", visible=False)
    bars = axes.bar([name for _, name, _ in CLASSES], areas, color=[colour for _, _, colour in CLASSES], edgecolor="#555555")
    axes.bar_label(bars, [f"{area:.1f} ha, {row['Percentage'].strip()} %" for area, row in zip(areas, rows)], padding=3)
    axes.set_ylim(0, areas.max() * 1.12)
    save(made, pictures / PICTURES[1])


if __name__ == "__main__":
    main(draw)
