#!/usr/bin/python3
"""Draws flood.png of README.md and docs/styles.md by gridforge-picture, the picture of examples/run_demo with its layer."""
import sys

from drawing import main, run
from gridforge import picture

PICTURES = ("flood.png",)


def draw(pictures):
    run("-max", *(f"level_1pct_{hours}_coarse.asc" for hours in ("1h", "6h", "24h")), "-out", "level_1pct.asc")
    run("-remap", "-wl", "level_1pct.asc", "-dem", "ground.asc")
    status = picture.main(["level_1pct_remap_d.asc", str(pictures / PICTURES[0]), "--ground", "ground.asc", "--layer",
                           "buildings.mif=Buildings", "--title", "Depth of the 1 % flood", "--dpi", "160", "--overwrite"])
    if status:
        sys.exit(status)


if __name__ == "__main__":
    main(draw)
