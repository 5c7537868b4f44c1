#!/usr/bin/python3
"""Draws ensemble.svg of docs/ensembles.md: the steps of the workflow, and which of them needs what another one makes.

usage: ensemble_steps.py TOOL VALLEY PICTURES

Tool and valley are not needed; PICTURES is the folder of the picture. A test of the workflow compares the lines with the rules.
"""
import os
import sys

PICTURES = ("ensemble.svg",)
WIDTH, HEIGHT, ACROSS, DOWN, MARGIN = 126, 48, 152, 76, 16  # points: a box, from box to box, around all
INK, LINE, OF_GRIDS, OF_OTHERS = "#202020", "#9a9a9a", "#dcebf5", "#f4ecd8"

# Column, row, and what the step makes.
STEPS = {
    "statistic": (0, 2, ("median, mean or rank", "over the patterns")),
    "maximum": (1, 2, ("over the durations,", "and which is critical")),
    "filtered": (2, 2, ("levels where", "it is deep enough")),
    "remap": (3, 2, ("level and depth", "on the fine terrain")),
    "map_of_durations": (2, 0, ("picture",)),
    "map_of_depths": (4, 1, ("picture",)),
    "difference": (4, 2, ("between scenarios",)),
    "damage_control": (3, 3, ("names of all levels",)),
    "damages": (4, 3, ("of each building", "in each flood")),
    "map_of_difference": (5, 2, ("picture",)),
    "average_damage": (5, 3, ("over a year",)),
    "report": (6, 2, ("one HTML file",)),
}
NEEDS = (
    ("statistic", "maximum"), ("maximum", "filtered"), ("filtered", "remap"), ("maximum", "map_of_durations"),
    ("remap", "map_of_depths"), ("remap", "difference"), ("difference", "map_of_difference"), ("remap", "damages"),
    ("damage_control", "damages"), ("damages", "average_damage"), ("map_of_durations", "report"), ("map_of_depths", "report"),
    ("map_of_difference", "report"), ("damages", "report"), ("average_damage", "report"),
)


def corner(step):
    column, row, _ = STEPS[step]
    return MARGIN + column * ACROSS, MARGIN + row * DOWN


def box(step):
    x, y = corner(step)
    fill = OF_OTHERS if step in ("report", "damage_control", "average_damage") or step.startswith("map") else OF_GRIDS
    texts = [f'<rect x="{x}" y="{y}" width="{WIDTH}" height="{HEIGHT}" rx="6" fill="{fill}" stroke="{INK}"/>']
    for number, (text, style) in enumerate([(step, "bold 11px"), *((line, "10px") for line in STEPS[step][2])]):
        texts.append(f'<text x="{x + WIDTH / 2:g}" y="{y + 16 + 13 * number}" text-anchor="middle" style="font: {style} sans-serif">'
                     f'{text}</text>')
    return texts


def arrow(first, second):
    (x, y), (to_x, to_y) = corner(first), corner(second)
    x, y, to_y = x + WIDTH, y + HEIGHT / 2, to_y + HEIGHT / 2
    if first == "damages" and second == "report":  # below the step between them
        low = corner("damages")[1] + HEIGHT + 16
        return (f'<path d="M{x - 20} {low - 16} C{x} {low} {x} {low} {x + 20} {low} L{to_x - 20} {low} '
                f'C{to_x + 40} {low} {to_x + 45} {low - 40} {to_x + 45} {corner("report")[1] + HEIGHT}"/>')
    turn = to_x - (ACROSS - WIDTH) / 2
    return f'<path d="M{x} {y:g} L{turn - 10:g} {y:g} C{turn:g} {y:g} {turn - 5:g} {to_y:g} {to_x} {to_y:g}"/>'


def main():
    out = os.path.join(sys.argv[3], PICTURES[0])
    columns, rows = (1 + max(step[i] for step in STEPS.values()) for i in (0, 1))
    width, height = 2 * MARGIN + columns * ACROSS - (ACROSS - WIDTH), 2 * MARGIN + rows * DOWN
    lines = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}">',
             '<defs><marker id="end" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="7" markerHeight="7" orient="auto">'
             f'<path d="M0 0 L8 4 L0 8 z" fill="{LINE}" stroke="none"/></marker></defs>',
             f'<rect width="{width}" height="{height}" fill="white"/>',
             f'<g fill="none" stroke="{LINE}" stroke-width="1.5">',
             *(arrow(*pair).replace("/>", ' marker-end="url(#end)"/>') for pair in NEEDS), "</g>",
             f'<g fill="{INK}">', *(line for step in STEPS for line in box(step)), "</g>", "</svg>"]
    with open(out, "w", encoding="ascii") as file:
        file.write("".join(line + "\n" for line in lines))


if __name__ == "__main__":
    main()
