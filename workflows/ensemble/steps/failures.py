"""What went wrong in the steps of a run, and what the tool has warned of, from their records."""
from __future__ import annotations

import json
from pathlib import Path


def failed_steps(records: Path, since: float) -> list[str]:
    """A line for each step that has failed since then: its name, the file that it read last, the message."""
    lines = []
    for path in sorted(records.rglob("*.json")):
        if path.stat().st_mtime < since:
            continue
        name = path.relative_to(records).with_suffix("")
        try:
            record = json.loads(path.read_text(encoding="ascii"))
        except ValueError:  # Snakemake makes an empty file where a step was killed before it wrote its record
            lines.append(f"{name}: ended without a record; see logs/{name}.txt and, on a cluster, logs/slurm/")
            continue
        if record["outcome"] != "finished":
            by_tool = record["build"] and record["inputs"]  # the messages of scripts name their files
            last = f" (the last file opened was {record['inputs'][-1]['name']})" if by_tool else ""
            lines.append(f"{name}: {record['error'] or record['outcome']}{last}")
    return lines


def warnings(records: Path, since: float) -> list[str]:
    """Each warning of the tool since then once, with the first step that had it and how many had."""
    steps: dict[str, list[str]] = {}
    for path in sorted(records.rglob("*.json")):
        if path.stat().st_mtime < since:
            continue
        try:
            found = json.loads(path.read_text(encoding="ascii"))["warnings"]
        except ValueError:
            continue  # failed_steps names it
        for text in dict.fromkeys(found):
            steps.setdefault(text, []).append(str(path.relative_to(records).with_suffix("")))
    return [f"{names[0]}{f' and {len(names) - 1} more' if len(names) > 1 else ''}: {text}" for text, names in steps.items()]
