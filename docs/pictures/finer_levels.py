#!/usr/bin/python3
"""Draws remap.png of docs/operations/remap.md: a coarse level, the fine ground, and the depths on it by TIN and by IDW."""
import shutil

from drawing import class_keys, colour_bar, figure, main, map_of, ramp_of, run, save, show, styles

PICTURES = ("remap.png",)
WINDOW = 294700, 6178450, 295300, 6178900


def draw(pictures):
    level = "level_1pct_6h_coarse.asc"
    for name in ("tin.asc", "idw.asc"):
        shutil.copy(level, name)
    run("-remap", "-wl", "tin.asc", "-dem", "ground.asc")
    run("-remap", "-bd50", "-wl", "idw.asc", "-dem", "ground.asc")
    made, axes = figure(9.4, 2, 2)
    ramp, ground, depth = ramp_of(level, WINDOW), ramp_of("ground.asc", WINDOW), styles.styles()["depth"]
    map_of(axes[0, 0], WINDOW, "the level of the model, cells of 25 m", ground=None)
    show(axes[0, 0], level, ramp, WINDOW)
    colour_bar(made, axes[0, 0], ramp, "level (m); white: null", location="bottom")
    map_of(axes[0, 1], WINDOW, "the ground, cells of 5 m", scale=False, ground=None)
    show(axes[0, 1], "ground.asc", ground, WINDOW)
    colour_bar(made, axes[0, 1], ground, "height (m)", location="bottom")
    for panel, name, title in ((axes[1, 0], "tin_remap_d.asc", "depth by TIN"), (axes[1, 1], "idw_remap_d.asc", "depth by IDW, -bd50")):
        map_of(panel, WINDOW, title, scale=False)
        show(panel, name, depth, WINDOW)
    made.legend(handles=class_keys(depth), loc="lower center", ncol=8,
                frameon=False, columnspacing=1, handletextpad=0.5, fontsize=10)
    made.get_layout_engine().set(rect=(0, 0.04, 1, 0.96))
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
