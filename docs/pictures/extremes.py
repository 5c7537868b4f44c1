#!/usr/bin/python3
"""Draws max.png of docs/operations/max-min.md: the highest level of three storms, and the storm that it came from."""
from drawing import VALLEY, cells_of, class_keys, colour_bar, figure, key_below, main, map_of, run, save, show, styles

PICTURES = ("max.png",)
HOURS = {1: "1h", 2: "6h", 3: "24h"}
LEVELS = 3, 20  # m: those of the flood plain; the creeks on the hills lie higher


def draw(pictures):
    run("-max", *(f"level_1pct_{hours}.asc" for hours in HOURS.values()), "-out", "peak.asc")
    made, (level, source) = figure(3.9, 1, 2)
    level.set_anchor("N")
    source.set_anchor("N")
    ramp = styles.styles()["level"].between(*LEVELS)
    map_of(level, VALLEY, "peak.asc: the highest level")
    show(level, "peak.asc", ramp)
    colour_bar(made, level, ramp, "level (m)", location="bottom", panchor=False, extend="max")
    style = styles.styles()["source"].named({number: hours.replace("h", " h") for number, hours in HOURS.items()})
    map_of(source, VALLEY, "peak_src.asc: the storm that it came from", scale=False)
    show(source, "peak_src.asc", style)
    key_below(source, class_keys(style, cells_of("peak_src.asc")[0]), title="1 % storm of", ncol=3)
    save(made, pictures / PICTURES[0])


if __name__ == "__main__":
    main(draw)
