#!/usr/bin/python3
"""Draws trim.png of docs/operations/trim.md: two regions over a grid, and the grids that are cut by them."""
from drawing import RED, Patch, figure, features, heading, key_beside, line_key, lines, main, map_of, pyplot, run, save, show, styles, whole

PICTURES = ("trim.png",)


def draw(pictures):
    run("-trim", "suburbs.mif", "depth_1pct_24h.asc", "-out", "cut")
    made = pyplot.figure(figsize=(10, 7.4), dpi=100, layout="constrained")
    axes = made.subplot_mosaic([["all", "all"], ["Upstream", "Downstream"]], height_ratios=(1.3, 1))
    depth = styles.styles()["depth"]
    outlines = {record["Name"]: vertices for record, vertices in features("suburbs.mif")}
    map_of(axes["all"], whole("ground.asc"), "depth_1pct_24h.asc and suburbs.mif")
    show(axes["all"], "depth_1pct_24h.asc", depth)
    lines(axes["all"], outlines.values(), RED, 2)
    for name, vertices in outlines.items():
        axes["all"].text(*vertices[:-1].mean(axis=0), name, ha="center", va="center", fontsize=13, fontweight="bold", color=RED,
                         bbox={"facecolor": "white", "alpha": 0.8, "edgecolor": "none"})
        map_of(axes[name], whole(f"cut_{name}.asc"), f"cut_{name}.asc", ground=None)
        show(axes[name], f"cut_{name}.asc", depth)
        lines(axes[name], [vertices], RED, 2)
    key_beside(axes["all"], [line_key(RED, "region"), heading("Depth"), *(Patch(facecolor=one.colour, edgecolor="#555555", label=one.label)
                                                                         for one in depth.classes)])
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
