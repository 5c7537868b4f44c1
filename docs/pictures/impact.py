#!/usr/bin/python3
"""Draws dif.png of docs/operations/dif.md: the difference of two floods in classes, and where only one of them is wet."""
from drawing import cells_of, class_keys, figure, heading, key_beside, main, map_of, run, save, show, styles, whole

PICTURES = ("dif.png",)


def draw(pictures):
    run("-dif", "level_1pct_6h.asc", "level_1pct_24h.asc", "-out", "change.asc")
    made, axes = figure(5.2)
    map_of(axes, whole("change.asc"), "Level of the 6 h storm less that of the 24 h storm")
    impact, wet = styles.styles()["impact"], styles.styles()["wet_dry"]
    show(axes, "change.asc", impact)
    show(axes, "change_wd.asc", wet)
    key_beside(axes, [heading("change.asc"), *class_keys(impact), heading("change_wd.asc"),
                      *class_keys(wet, cells_of("change_wd.asc")[0])], fontsize=10)
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
