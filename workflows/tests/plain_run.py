"""The results of the sample study by plain runs of the tool, one after the other, as a script without the workflow would make them."""
from __future__ import annotations

import csv
import subprocess
import sys
from pathlib import Path

from with_workflow import ROOT, run_tool


def plain_run(study: Path) -> None:
    """For the configuration of the sample: the median over the patterns, the TIN, all differences of the first two scenarios."""
    with open(study / "runs.csv", newline="") as file:
        runs = list(csv.DictReader(file))
    durations = sorted({run["duration"] for run in runs})
    scenarios = sorted({run["scenario"] for run in runs})
    probabilities = list(dict.fromkeys(run["probability"] for run in runs))
    for kind in ("patterns", "peaks", "fine"):
        for scenario in scenarios:
            (study / kind / scenario).mkdir(parents=True)
    for scenario in scenarios:
        for probability in probabilities:
            for kind in ("depth", "level"):
                medians = []
                for duration in durations:
                    name = f"patterns/{scenario}/{probability}pct_{duration}_{kind}"
                    run_tool(study, "-statMedian", "-flt", "-out", name, *(
                        run[kind] for run in runs
                        if (run["scenario"], run["probability"], run["duration"]) == (scenario, probability, duration)))
                    medians.append(f"{name}_Median_Val.flt")
                run_tool(study, "-max", "-flt", *medians, "-out", f"peaks/{scenario}/{probability}pct_{kind}")
            peak, fine = f"peaks/{scenario}/{probability}pct", f"fine/{scenario}/{probability}pct"
            run_tool(study, "-cd0.1", "-flt", f"{peak}_depth.flt", f"{peak}_level.flt", "-out", fine)
            run_tool(study, "-remap", "-tin", "-wl", f"{fine}.flt", "-dem", "ground.flt", "-flt")
    difference(study, scenarios, probabilities)
    for scenario in scenarios:
        damages(study, scenario, probabilities)


def difference(study: Path, scenarios: list[str], probabilities: list[str]) -> None:
    today, warmer = scenarios
    (study / f"differences/{warmer}_{today}").mkdir(parents=True)
    for probability in probabilities:
        run_tool(study, "-dif", "-flt", *(f"fine/{scenario}/{probability}pct_remap_h.flt" for scenario in (warmer, today)), "-out",
                 f"differences/{warmer}_{today}/{probability}pct")


def damages(study: Path, scenario: str, probabilities: list[str]) -> None:
    (study / "damages").mkdir(exist_ok=True)
    lines = [f"Read Result % {probability} == fine/{scenario}/{probability}pct_remap_h.flt\n" for probability in probabilities]
    control = study / f"damages/{scenario}.dmg"
    control.write_text((study / "catchment.dmg").read_text() + "".join(lines))
    run_tool(study, "-damages", f"damages/{scenario}.dmg", "-out", f"damages/{scenario}.mif")
    subprocess.run([sys.executable, "-B", str(ROOT / "python/bin/gridforge-aad"), f"damages/{scenario}.csv", "--rarer", "hold",
                    "--frequent", "zero:50", "--out", f"damages/{scenario}_average.csv"], cwd=study, check=True)
