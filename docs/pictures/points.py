#!/usr/bin/python3
"""Draws xyz.png of docs/operations/xyz.md: points of a text file, and the cells around them."""
from pathlib import Path

import numpy
from drawing import INK, RED, coloured, cells_of, figure, main, ramp_of, run, save

PICTURES = ("xyz.png",)
WINDOW = 293780, 6178880, 293830, 6178915  # ten by seven cells of the ground, on a bank
MISSING = {(2, 3), (4, 7), (5, 7)}  # rows from the north and columns without a point


def draw(pictures):
    heights, (west, _, _, north) = cells_of("ground.asc", WINDOW)
    rows, columns = heights.shape
    points = [(west + 5 * column + 2.5, north - 5 * row - 2.5, heights[row, column]) for row in range(rows)
              for column in range(columns) if (row, column) not in MISSING]
    Path("survey.xyz").write_text("".join(f"{x:.1f} {y:.1f} {z:.1f}\n" for x, y, z in points), encoding="ascii")
    run("-xyz", "survey.xyz", "-out", "survey.asc")
    cells, extent = cells_of("survey.asc")
    ramp = ramp_of("survey.asc")
    made, axes = figure(3.7, 1, 2)
    for panel, title in zip(axes, ("survey.xyz: heights (m) at points", "survey.asc: a cell around each point")):
        panel.set_title(title)
        panel.set(xlim=(extent[0] - 2, extent[1] + 2), ylim=(extent[2] - 2, extent[3] + 2), aspect="equal", xlabel="x (m)",
                  ylabel="y (m)" if panel is axes[0] else "")
        panel.ticklabel_format(useOffset=False, style="plain")
        panel.set_xticks(numpy.arange(extent[0] + 2.5, extent[1], 15))
        panel.set_yticks(numpy.arange(extent[2] + 2.5, extent[3], 10))
    axes[0].scatter(*zip(*[point[:2] for point in points]), color=RED, s=22)
    for x, y, z in points:
        axes[0].annotate(f"{z:.1f}", (x, y), (0, 5), textcoords="offset points", ha="center", fontsize=10.5, color=INK)
    axes[1].imshow(coloured(cells, ramp), extent=extent, interpolation="nearest")
    axes[1].set(xlim=axes[0].get_xlim(), ylim=axes[0].get_ylim())
    for (row, column), z in numpy.ndenumerate(cells):
        text, colour = ("null", "#707070") if numpy.isnan(z) else (f"{z:.1f}", INK)
        axes[1].text(extent[0] + 5 * column + 2.5, extent[3] - 5 * row - 2.5, text, ha="center", va="center", fontsize=10.5, color=colour,
                     bbox={"facecolor": "white", "alpha": 0.5, "edgecolor": "none", "pad": 1})
    axes[1].hlines(numpy.arange(extent[2], extent[3] + 1, 5), extent[0], extent[1], color="white", linewidth=0.8)
    axes[1].vlines(numpy.arange(extent[0], extent[1] + 1, 5), extent[2], extent[3], color="white", linewidth=0.8)
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
