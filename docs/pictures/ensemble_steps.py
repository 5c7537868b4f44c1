#!/usr/bin/python3
"""Draws ensemble.svg of docs/ensembles.md: the steps of the workflow, and which of them needs what another one makes.

usage: ensemble_steps.py TOOL VALLEY PICTURES

Tool and valley are not needed; PICTURES is the folder of the picture. A test of the workflow compares the lines with the rules.
"""
import os
import sys

PICTURES = ("ensemble.svg",)
WIDTH, HEIGHT, ACROSS, DOWN, MARGIN = 170, 56, 204, 96, 20  # points: a box, from box to box, around all
LEADING = 16  # points from line to line of a box
INK, LINE, OF_GRIDS, OF_OTHERS = "#202020", "#9a9a9a", "#dcebf5", "#f4ecd8"

# Column, row, and what the step makes.
STEPS = {
    "statistic": (2, 0, ("median, mean or rank", "over the patterns")),
    "maximum": (2, 1, ("over the durations,", "and which is critical")),
    "filtered": (2, 2, ("levels where", "it is deep enough")),
    "remap": (2, 3, ("level and depth", "on the fine terrain")),
    "map_of_durations": (0, 2, ("picture",)),
    "map_of_depths": (1, 4, ("picture",)),
    "difference": (2, 4, ("between scenarios",)),
    "damage_control": (3, 3, ("names of all levels",)),
    "damages": (3, 4, ("of each building", "in each flood")),
    "map_of_difference": (2, 5, ("picture",)),
    "average_damage": (3, 5, ("over a year",)),
    "report": (2, 6, ("one HTML file",)),
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
    lines = [(step, "bold 14px"), *((line, "13px") for line in STEPS[step][2])]
    first = y + (HEIGHT - LEADING * (len(lines) - 1)) / 2 + 5
    for number, (text, style) in enumerate(lines):
        texts.append(f'<text x="{x + WIDTH / 2:g}" y="{first + LEADING * number:g}" text-anchor="middle" '
                     f'style="font: {style} sans-serif">{text}</text>')
    return texts


def arrow(first, second):
    (x, y), (to_x, to_y) = corner(first), corner(second)
    if first == "damages" and second == "report":  # on the right of the step between them
        right, end = x + WIDTH + 14, to_y + HEIGHT / 2
        return (f'<path d="M{x + WIDTH} {y + HEIGHT / 2:g} C{right} {y + HEIGHT / 2:g} {right} {y + HEIGHT / 2:g} {right} {y + HEIGHT} '
                f'L{right} {end - 20:g} C{right} {end:g} {right} {end:g} {right - 20} {end:g} L{to_x + WIDTH} {end:g}"/>')
    x, y, to_x = x + WIDTH / 2, y + HEIGHT, to_x + WIDTH / 2
    turn = to_y - (DOWN - HEIGHT) / 2
    return f'<path d="M{x:g} {y} L{x:g} {turn - 14:g} C{x:g} {turn:g} {to_x:g} {turn - 10:g} {to_x:g} {to_y}"/>'


def main():
    out = os.path.join(sys.argv[3], PICTURES[0])
    columns, rows = (1 + max(step[i] for step in STEPS.values()) for i in (0, 1))
    width, height = 2 * MARGIN + (columns - 1) * ACROSS + WIDTH, 2 * MARGIN + (rows - 1) * DOWN + HEIGHT
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
