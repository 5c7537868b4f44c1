#!/usr/bin/python3
"""Draws nbc.png of docs/operations/nbc.md: the network lines and sections of the example, and the ground along three sections."""
import os

import numpy
from drawing import (BLUE, INK, ORANGE, RED, VIOLET, chart, dots, features, key_below, line_key, dot_key, lines, main, map_of, pyplot,
                     run, save, table)

PICTURES = ("nbc.png",)
WINDOW = 293000, 6178250, 295400, 6179400
CHOSEN = {"csv\\River_441.286.csv": RED, "csv\\River_1523.000.csv": VIOLET, "csv\\Brook_395.423.csv": ORANGE}


def draw(pictures):
    os.makedirs("network/csv", exist_ok=True)
    run("-nbc", "network/valley.nbc")
    made = pyplot.figure(figsize=(10, 9), dpi=100, layout="constrained")
    axes = made.subplot_mosaic([["plan"] * 3, list(CHOSEN)], height_ratios=(1.9, 1))
    plan = axes["plan"]
    map_of(plan, WINDOW, "Network lines and sections")
    network = [vertices for _, vertices in features("network/1d_nwk_valley.mif")]
    lines(plan, network, BLUE, 2)
    dots(plan, [end for line in network for end in (line[0], line[-1])], BLUE, 34)
    for record, vertices in features("network/1d_xs_valley.mif"):
        lines(plan, [vertices], CHOSEN.get(record["Source"], INK), 2.2 if record["Source"] in CHOSEN else 1.2)
    key_below(plan, [line_key(BLUE, "network line"), dot_key(BLUE, "its ends"), line_key(INK, "section", 1.2)], ncol=3)
    for source, colour in CHOSEN.items():
        rows = table("network/" + source.replace("\\", "/"))
        chainage, height = (numpy.array([float(row[name]) for row in rows]) for name in ("Chainage", "Z"))
        axes[source].plot(chainage, height, color=colour, marker="o", markersize=4, linewidth=1.8)
        chart(axes[source], source[4:], "chainage (m)", "ground (m)")
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
