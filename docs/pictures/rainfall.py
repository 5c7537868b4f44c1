#!/usr/bin/python3
"""Draws rf.png of docs/operations/rf.md: the fourth hour of the example by each method, with its gauges."""
import numpy
from matplotlib.cm import ScalarMappable
from matplotlib.colors import BoundaryNorm

from drawing import RED, cells_of, dots, features, figure, main, map_of, pyplot, run, save, table, whole

PICTURES = ("rf.png",)
METHODS = {"polygons": "polygons", "tin": "TIN", "idw": "IDW"}
STEPS = numpy.arange(2, 17)  # mm


def draw(pictures):
    made, axes = figure(3.5, 1, 3)
    colours = pyplot.get_cmap("YlGnBu").copy()
    colours.set_bad("#d0d0d0")
    norm = BoundaryNorm(STEPS, colours.N)
    for (method, title), panel in zip(METHODS.items(), axes):
        run("-rf", f"rainfall/{method}.rfc")
        name = f"rainfall/{method}_t4..asc"
        map_of(panel, whole(name), title, scale=method == "polygons", ground=None)
        cells, extent = cells_of(name)
        panel.imshow(cells, cmap=colours, norm=norm, extent=extent, interpolation="nearest")
        for record, vertices in features("rainfall/gauges.mif"):
            dots(panel, vertices, RED)
            depth = float(table(f"rainfall/{record['Name'].lower()}.csv")[3]["Depth (mm)"])
            panel.annotate(f"{record['Name']} {depth:g}", vertices[0], (0, 7), textcoords="offset points", ha="center", fontsize=11,
                           bbox={"facecolor": "white", "alpha": 0.8, "edgecolor": "none", "pad": 1})
    made.colorbar(ScalarMappable(norm, colours), ax=axes, location="bottom", label="rain of the fourth hour (mm); grey: null",
                  ticks=STEPS, aspect=60, shrink=0.8)
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
