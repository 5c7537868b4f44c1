#!/usr/bin/python3
"""Draws damages.png of docs/operations/damages.md and aad.png of docs/average_damage.md: what floods cost, on the map and over
their probability."""
import numpy
from drawing import (BLUE, chart, dot_key, features, figure, heading, key_beside, main, map_of, run, save, show, styles, table,
                     Patch)
from gridforge import aad

PICTURES = ("damages.png", "aad.png")
WINDOW = 293300, 6178400, 295400, 6179500
CLASSES = ((1, "no damage", "#ffffff"), (20000, "to 20 000", "#fee391"), (75000, "to 75 000", "#fe9929"),
           (numpy.inf, "above 75 000", "#b30000"))
NOTHING_AT = 50  # per cent


def colour_of(damage):
    return next(colour for limit, _, colour in CLASSES if damage < limit)


def draw_map(path):
    made, axes = figure(5)
    map_of(axes, WINDOW, "Damage of each building in the 1 % flood")
    depth = styles.styles()["depth"]
    show(axes, "depth_1pct_6h.asc", depth)
    for record, vertices in features("buildings_Damages.mif"):
        x, y = vertices.mean(axis=0)
        damage = record["Dmg_1AEP"]
        axes.scatter(x, y, s=26 if damage >= 1 else 16, color=colour_of(damage), edgecolors="#202020", linewidths=0.7, zorder=6)
    key_beside(axes, [heading("Damage ($)"), *(dot_key(colour, label) for _, label, colour in CLASSES), heading("Depth"),
                      *(Patch(facecolor=one.colour, edgecolor="#555555", label=one.label) for one in depth.classes)])
    for handle in axes.get_legend().legendHandles:
        if hasattr(handle, "set_markeredgecolor"):
            handle.set_markeredgecolor("#202020")
    save(made, path)


def draw_curve(path):
    """The sum of all buildings over the probability; its area is the average annual damage, with the assumptions of the page."""
    aad.main(["buildings_Damages.csv", "--rarer", "hold", "--frequent", f"zero:{NOTHING_AT}", "--out", "assumed.csv"])
    total = table("assumed.csv")[-1]
    rows = table("buildings_Damages.csv")
    columns = [name for name in rows[0] if "AEP" in name]
    chances = numpy.array([float(name.split()[-3]) for name in columns])
    sums = numpy.array([sum(float(row[name]) for row in rows) for name in columns]) / 1e6
    order = numpy.argsort(chances)
    chances, sums = chances[order], sums[order]
    made, axes = figure(4.4)
    chart(axes, "Damage of all buildings over the probability of the flood", "chance in any year (AEP, %)", "damage (million $)")
    parts = (("AAD Rarer", [0, chances[0]], [sums[0]] * 2, "#f6c9a0", "rarer (--rarer hold)"),
             ("AAD Between", chances, sums, "#bcd7ea", "between the floods that were run"),
             ("AAD More Frequent", [chances[-1], NOTHING_AT], [sums[-1], 0], "#d9d2e9", f"more frequent (--frequent zero:{NOTHING_AT})"))
    for column, across, up, colour, name in parts:
        axes.fill_between(across, up, color=colour, label=f"{name}: {float(total[column]) / 1e3:.0f}")
    axes.plot(chances, sums, color=BLUE, marker="o", linewidth=2, clip_on=False)
    for chance, damage in zip(chances, sums):
        axes.annotate(f"{damage:.1f} at {chance:g} %", (chance, damage), (8, 6), textcoords="offset points")
    axes.set(xlim=(-0.5, NOTHING_AT + 2), ylim=(0, 16), xticks=range(0, NOTHING_AT + 2, 5))
    axes.legend(loc="upper right", title=f"area (thousand $ a year), together {float(total['AAD']) / 1e3:.0f}", alignment="left")
    save(made, path)


def draw(pictures):
    run("-damages", "catchment.dmg")
    draw_map(pictures / PICTURES[0])
    draw_curve(pictures / PICTURES[1])


if __name__ == "__main__":
    main(draw)
