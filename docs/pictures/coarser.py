#!/usr/bin/python3
"""Draws resize.png of docs/operations/resize.md: cells of 5 m, and the cells of 25 m that become of them by each method."""
import numpy
from drawing import cells_of, coloured, colour_bar, figure, main, map_of, ramp_of, run, save

PICTURES = ("resize.png",)
WINDOW = 293700, 6178825, 293950, 6178975  # ten by six blocks
METHODS = {"rm_avg": "mean, -rm_avg", "rm_min": "lowest, -rm_min", "rm_max": "highest, -rm_max"}


def draw(pictures):
    made, axes = figure(6.6, 2, 2)
    ramp = ramp_of("ground.asc", WINDOW)
    panels = {"ground.asc": "ground.asc: cells of 5 m, and the blocks"}
    for flag, words in METHODS.items():
        run("-resize5", f"-{flag}", "ground.asc", "-out", f"{flag}.asc")
        panels[f"{flag}.asc"] = words
    for (name, title), panel in zip(panels.items(), axes.flat):
        map_of(panel, WINDOW, title, scale=name == "ground.asc", ground=None)
        cells, extent = cells_of(name, WINDOW)
        panel.imshow(coloured(cells, ramp), extent=extent, interpolation="nearest")
        panel.set(xlim=WINDOW[::2], ylim=WINDOW[1::2])
        if name == "ground.asc":
            panel.vlines(numpy.arange(WINDOW[0], WINDOW[2], 25), WINDOW[1], WINDOW[3], colors="white", linewidth=1)
            panel.hlines(numpy.arange(WINDOW[1], WINDOW[3], 25), WINDOW[0], WINDOW[2], colors="white", linewidth=1)
        else:
            for (row, column), value in numpy.ndenumerate(cells):
                panel.text(extent[0] + 25 * column + 12.5, extent[3] - 25 * row - 12.5, f"{value:.1f}", ha="center", va="center",
                           fontsize=10.5, color="#101010", bbox={"facecolor": "white", "alpha": 0.55, "edgecolor": "none", "pad": 1})
    colour_bar(made, axes, ramp, "height (m)")
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
