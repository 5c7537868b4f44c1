"""The whole workflow on the sample valley, on one machine."""
import importlib.util
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import with_workflow
from plain_run import plain_run
from with_workflow import make_sample, results, run_tool, snakemake

sys.path.insert(0, str(with_workflow.ROOT / "tests/docs"))
import pages  # noqa: E402

with_workflow.settle_programs()

CHANGED = "grids/today_1pct_1h_p2_level.flt"
AFTER_IT = {
    "statistic set=patterns/today/1pct_1h_level", "maximum name=peaks/today/1pct_level", "filtered scenario=today, storm=1pct",
    "remap scenario=today, storm=1pct", "difference first=warmer, second=today, storm=1pct", "damages scenario=today",
    "average_damage scenario=today", "map_of_depths scenario=today, storm=1pct", "map_of_durations scenario=today, storm=1pct",
    "map_of_difference first=warmer, second=today, storm=1pct", "report", "all",
}


def jobs_of(console: str) -> set[str]:
    """The steps that Snakemake has started, with what they were for."""
    jobs = set()
    for text in re.split(r"\n\[[^\n]*\]\n", console):
        rule = re.match(r"(?:local)?rule (\w+):\n", text)
        if rule:
            known = re.search(r"\n    wildcards: ([^\n]*)", text)
            jobs.add(f"{rule[1]} {known[1]}" if known else rule[1])
    return jobs


def raise_a_cell(path: Path) -> None:
    """The highest level of the grid gets a metre higher."""
    cells = list(struct.unpack(f"<{path.stat().st_size // 4}f", path.read_bytes()))
    cells[cells.index(max(cells))] += 1
    path.write_bytes(struct.pack(f"<{len(cells)}f", *cells))


def run_commands_of_page(folder: Path) -> subprocess.CompletedProcess:
    """What the page shows first: the sample is made in the folder, and the workflow run on it."""
    page = (with_workflow.ROOT / "docs/ensembles.md").read_text()
    block = next(block for block in pages.blocks_of("docs/ensembles.md", page) if block.name == "needs Snakemake")
    commands = [f"workflow={with_workflow.WORKFLOW}", *block.lines[1:]]
    return subprocess.run(["bash", "-euo", "pipefail", "-c", "\n".join(commands)], cwd=folder, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)


class WorkflowTest(unittest.TestCase):
    """One study, on which the whole workflow has run; each test works on a copy, times of files included."""

    @classmethod
    def setUpClass(cls):
        cls.scratch = Path(tempfile.mkdtemp(prefix="gridforge-workflow-"))
        cls.addClassCleanup(shutil.rmtree, cls.scratch)
        cls.fresh, cls.done = cls.scratch / "fresh", cls.scratch / "done"
        make_sample(cls.fresh)
        cls.first_run = run_commands_of_page(cls.scratch)
        (cls.scratch / "study").rename(cls.done)

    def setUp(self):
        self.study = self.scratch / "study"
        self.addCleanup(shutil.rmtree, self.study, ignore_errors=True)

    def start_from(self, folder):
        shutil.copytree(folder, self.study)
        return self.study

    def runs_well(self, *arguments):
        run = snakemake(self.study, *arguments)
        self.assertEqual(run.returncode, 0, run.stdout)
        return run.stdout

    def change(self, name, old, new):
        path = self.study / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new))

    def test_results_are_those_of_plain_runs(self):
        self.assertEqual(self.first_run.returncode, 0, self.first_run.stdout)
        plain_run(self.start_from(self.fresh))
        want, got = results(self.study), results(self.done)
        self.assertEqual(sorted(got), sorted(want))
        self.assertEqual([name for name in want if got[name] != want[name]], [])

    def test_each_step_has_a_record_and_a_log(self):
        records = sorted(path.relative_to(self.done / "records").with_suffix("") for path in (self.done / "records").rglob("*.json"))
        logs = sorted(path.relative_to(self.done / "logs").with_suffix("") for path in (self.done / "logs").rglob("*.txt"))
        self.assertEqual(records, logs)
        of_tool = 24 + 12 + 6 + 6 + 3 + 2  # statistics, maxima, filtered, remapped, differences, damages
        self.assertEqual(len(records), of_tool + 2 + 2 + 15 + 1)  # control files, averages, maps, report

    def test_memory_limits_the_steps_at_a_time(self):
        console = self.first_run.stdout
        self.assertRegex(console, r"\nProvided resources: mem_mb=16000\n")
        asked = [line for line in console.splitlines() if line.startswith("    resources: ")]
        self.assertEqual(len(asked), console.count("\nrule ") + console.count("\nlocalrule "))
        self.assertEqual([line for line in asked if " mem_mb=" not in line], [])

    def test_every_job_of_a_cluster_asks_for_minutes(self):
        text = (with_workflow.WORKFLOW / "Snakefile").read_text()
        rules = dict(re.findall(r"^ *rule (\w+):\n(.*?)(?=^ *rule |\Z)", text, re.MULTILINE | re.DOTALL))
        local = {"all", "results", "damage_control"}
        self.assertEqual({name for name, body in rules.items() if not re.search(r"\n +runtime=need\.", body)}, local)
        self.assertEqual({name for name, body in rules.items() if not re.search(r"\n +mem_mb=need\.", body)}, local)

    def test_the_report_shows_all_maps_and_the_damages(self):
        text = (self.done / "report.html").read_text()
        self.assertEqual(text.count('src="data:image/png;base64,'), 6 + 6 + 3)
        average = (self.done / "damages/warmer_average.csv").read_text().splitlines()[-1].split(",")[4]
        self.assertIn(f"<td>Average over a year</td><td>{float(average):,.0f}</td>", text)

    def test_the_picture_shows_the_steps(self):
        self.start_from(self.fresh)
        graph = snakemake(self.study, "--rulegraph").stdout
        names = dict(re.findall(r'(\d+)\[label = "(\w+)"', graph))
        needs = [(names[first], names[second]) for first, second in re.findall(r"(\d+) -> (\d+)", graph)]
        spec = importlib.util.spec_from_file_location("ensemble_steps", with_workflow.ROOT / "docs/pictures/ensemble_steps.py")
        picture = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(picture)
        self.assertEqual(sorted(picture.NEEDS), sorted(pair for pair in needs if "all" not in pair))

    def test_nothing_runs_again_without_a_change(self):
        self.start_from(self.done)
        self.assertIn("Nothing to be done", self.runs_well())

    def test_a_changed_grid_runs_the_steps_after_it(self):
        self.start_from(self.done)
        raise_a_cell(self.study / CHANGED)
        self.assertEqual(jobs_of(self.runs_well()), AFTER_IT)
        self.assertEqual(jobs_of(self.runs_well()), set())

    def test_an_older_grid_in_place_of_another_runs_the_steps_after_it(self):
        self.start_from(self.done)
        for name in (CHANGED, CHANGED.replace(".flt", ".hdr")):
            with self.subTest(name):
                path = self.study / name
                os.utime(path, (path.stat().st_atime, path.stat().st_mtime - 1000))
                self.assertEqual(jobs_of(self.runs_well("--dry-run")), AFTER_IT)
                os.utime(path, (path.stat().st_atime, path.stat().st_mtime + 1000))
        path = self.study / "ground.hdr"
        os.utime(path, (1000, 1000))
        self.assertEqual({job for job in jobs_of(self.runs_well("--dry-run")) if job.startswith("remap")},
                         {f"remap scenario={scenario}, storm={storm}" for scenario in ("today", "warmer")
                          for storm in ("20pct", "5pct", "1pct")})

    def test_changed_attributes_of_buildings_run_the_damages(self):
        self.start_from(self.done)
        path = self.study / "buildings.mid"
        path.write_bytes(path.read_bytes())
        after_it = {"damages scenario=today", "damages scenario=warmer", "average_damage scenario=today",
                    "average_damage scenario=warmer", "report", "all"}
        self.assertEqual(jobs_of(self.runs_well("--dry-run")), after_it)
        os.utime(path, (1000, 1000))
        self.assertEqual(jobs_of(self.runs_well("--dry-run")), after_it)

    def test_a_further_run_in_the_table_runs_the_steps_after_it(self):
        self.start_from(self.done)
        for kind in ("depth", "level"):
            for suffix in (".flt", ".hdr"):
                shutil.copy(self.study / f"grids/today_1pct_1h_p2_{kind}{suffix}", self.study / f"grids/more_{kind}{suffix}")
        with open(self.study / "runs.csv", "a") as table:
            table.write("today,1,1h,p4,grids/more_depth.flt,grids/more_level.flt\n")
        run = snakemake(self.study, "--dry-run")
        started = jobs_of(run.stdout)
        self.assertEqual(AFTER_IT - started, set(), run.stdout)
        self.assertEqual(started - AFTER_IT, {"statistic set=patterns/today/1pct_1h_depth", "maximum name=peaks/today/1pct_depth"})

    def test_a_failed_step_names_the_file_and_leaves_nothing(self):
        self.start_from(self.done)
        whole = (self.study / CHANGED).read_bytes()
        (self.study / CHANGED).write_bytes(whole[:3000])
        run = snakemake(self.study)
        self.assertEqual(run.returncode, 1)
        self.assertIn(f"FAILED patterns/today/1pct_1h_level: ERROR 2334 - Reading Grid file data.  Check format and file is complete"
                      f" by viewing in GIS. (the last file opened was {CHANGED})\n", run.stdout)
        self.assertEqual([*self.study.glob("patterns/today/1pct_1h_level*_Val.flt"), *self.study.rglob(".gridforge-*")], [])
        (self.study / CHANGED).write_bytes(whole)
        self.runs_well()
        self.assertEqual(results(self.study), results(self.done))

    def test_a_failed_step_that_is_no_run_of_the_tool(self):
        self.start_from(self.done)
        self.change("config.yaml", "zero:50", "zero:no")
        run = snakemake(self.study, "damages/today_average.csv")
        self.assertEqual(run.returncode, 1)
        self.assertIn("FAILED damages/today_average: gridforge-aad: error: argument --frequent: none, hold or zero:PERCENT is expected,"
                      " not zero:no\n", run.stdout)
        self.change("catchment.dmg", "Read GIS Buildings", "Read Result % 1 == a.flt\nRead GIS Buildings")
        run = snakemake(self.study, "damages/today.dmg")
        self.assertEqual(run.returncode, 1)
        self.assertIn("FAILED damages/today_control: catchment.dmg names grids by Read Result; the workflow adds those lines\n",
                      run.stdout)
        self.assertEqual(run.stdout.count("FAILED"), 1)  # not that of the run before

    def test_a_step_that_ends_without_a_record(self):
        self.start_from(self.done)
        raise_a_cell(self.study / CHANGED)
        with mock.patch.dict(os.environ, GRIDFORGE=str(self.study / "no_tool")):
            run = snakemake(self.study, "peaks/today/1pct_level.flt")
        self.assertEqual(run.returncode, 1)
        self.assertIn("FAILED patterns/today/1pct_1h_level: ended without a record; see logs/patterns/today/1pct_1h_level.txt and,"
                      " on a cluster, logs/slurm/\n", run.stdout)

    def test_a_lost_run_is_warned_of(self):
        self.start_from(self.done)
        lines = (self.study / "runs.csv").read_text().splitlines(keepends=True)
        (self.study / "runs.csv").write_text("".join(line for line in lines if not line.startswith("today,1,1h,p3,")))
        self.assertIn("WARNING patterns/today/1pct_1h has 2 patterns, others have up to 3\n",
                      self.runs_well("patterns/today/1pct_1h_level_Median_Val.flt"))

    def test_a_missing_duration_is_refused_before_the_first_step(self):
        self.start_from(self.fresh)
        lines = (self.study / "runs.csv").read_text().splitlines(keepends=True)
        kept = [line for line in lines if not line.startswith("today,5,6h,")]
        (self.study / "runs.csv").write_text("".join(kept))
        run = snakemake(self.study)
        self.assertEqual(run.returncode, 1)
        self.assertIn("runs.csv: today has no run of 5 % and 6h; if that is meant, add the line today,5,6h,none,,", run.stdout)
        self.assertFalse((self.study / "patterns").exists())
        (self.study / "runs.csv").write_text("".join([*kept, "today,5,6h,none,,\n"]))
        self.runs_well("peaks/today/5pct_level.flt")
        self.assertEqual((self.study / "peaks/today/5pct_level_src_legend.csv").read_text().splitlines()[1:],
                         ["1,patterns/today/5pct_1h_level_Median_Val.flt"])

    def test_a_maximum_by_groups_is_that_of_one_run(self):
        self.start_from(self.fresh)
        self.change("config.yaml", "statistic: median", "statistic: max")
        self.change("config.yaml", "most_grids: 500", "most_grids: 2")
        self.runs_well("patterns/today/1pct_6h_level.flt")
        grids = [f"grids/today_1pct_6h_p{number}_level.flt" for number in (1, 2, 3)]
        run_tool(self.study, "-max", "-flt", *grids, "-out", "plain")
        for end in (".flt", ".hdr", ".prj", "_src.flt", "_src.hdr", "_src.prj", "_src_legend.csv"):
            self.assertEqual((self.study / f"patterns/today/1pct_6h_level{end}").read_bytes(),
                             (self.study / f"plain{end}").read_bytes(), end)
        self.assertEqual([path for path in (self.study / "parts").rglob("*") if path.is_file() and path.suffix != ".prj"], [])

    def test_more_patterns_than_the_tool_takes(self):
        self.start_from(self.fresh)
        self.change("config.yaml", "most_patterns: 10", "most_patterns: 2")
        run_tool(self.study, "-conv", "grids/today_1pct_6h_p2_level.flt", "-decimal6")  # one of them is text
        self.change("runs.csv", "grids/today_1pct_6h_p2_level.flt", "grids/today_1pct_6h_p2_level.asc")
        name = "patterns/today/1pct_6h_level"
        self.runs_well(f"{name}_Median_Val.flt")
        grids = [f"grids/today_1pct_6h_p{number}_level" for number in (1, 2, 3)]
        files = [grids[0] + ".flt", grids[1] + ".asc", grids[2] + ".flt"]
        run_tool(self.study, "-statMedian", "-flt", *files, "-out", "plain")
        for end in ("_Median_Val.flt", "_Median_Val.hdr", "_Median_Val.prj", "_Median_Src.flt", "_Src_legend.csv"):
            self.assertEqual((self.study / (name + end)).read_bytes(), (self.study / f"plain{end}").read_bytes(), end)

    def test_the_other_method_of_the_remap(self):
        self.start_from(self.done)
        self.change("config.yaml", "method: tin", "method: idw")
        self.change("config.yaml", "# distance: 100", "distance: 30")
        self.runs_well("fine/today/1pct_remap_d.flt")
        for end in (".flt", ".hdr"):
            shutil.copy(self.study / f"fine/today/1pct{end}", self.study / f"plain{end}")
        run_tool(self.study, "-remap", "-bd30", "-wl", "plain.flt", "-dem", "ground.flt", "-flt")
        for end in ("_remap_h.flt", "_remap_d.flt"):
            self.assertEqual((self.study / f"fine/today/1pct{end}").read_bytes(), (self.study / f"plain{end}").read_bytes())

    def test_a_terrain_in_tiles_gives_the_same(self):
        self.start_from(self.done)
        shutil.rmtree(self.study / "fine")
        self.change("config.yaml", "tiles: 1 ", "tiles: 3 ")
        targets = [f"fine/today/1pct_remap_{what}.flt" for what in "hd"]
        self.assertEqual(len(jobs_of(self.runs_well(*targets))), 1 + 9 + 9 + 2)  # filtered, cut, remapped, joined
        for what in "hd":
            for end in (".flt", ".hdr", ".prj"):
                name = f"fine/today/1pct_remap_{what}{end}"
                self.assertEqual((self.study / name).read_bytes(), (self.done / name).read_bytes(), name)
        self.change("ground.hdr", "cellsize 5", "cellsize 5.1")
        run = snakemake(self.study, "--dry-run")
        self.assertEqual(run.returncode, 1)
        self.assertIn("ground.flt: cellsize 5.1 is rounded by the tool, so tiles would not give what the whole gives; take one tile\n",
                      run.stdout)

    def test_a_tile_left_of_another_number_of_tiles(self):
        self.start_from(self.done)
        shutil.rmtree(self.study / "fine")
        self.change("config.yaml", "tiles: 1 ", "tiles: 4 ")
        self.runs_well("tiles/0_0.flt", "tiles/today/1pct/1_1_remap_h.flt", "--notemp")
        self.change("config.yaml", "tiles: 4 ", "tiles: 3 ")
        self.assertEqual(len(jobs_of(self.runs_well("fine/today/1pct_remap_h.flt"))), 9 + 9 + 1)  # cut, remapped, joined
        name = "fine/today/1pct_remap_h.flt"
        self.assertEqual((self.study / name).read_bytes(), (self.done / name).read_bytes())

    def test_settings_that_cannot_be(self):
        self.start_from(self.fresh)
        for old, new, message in (
                ("statistic: median", "statistic: most", "statistic is median, mean, max or a rank such as rank3, not: most"),
                ("statistic: median", "statistic: rank4", "rank4: patterns/today/20pct_1h_depth has 3 patterns only"),
                ("[warmer, today]", "[warmer, past]", "differences: the table has no scenario past"),
                ("method: tin", "method: nearest", "remap: the method is tin or idw, not: nearest"),
                ("cutoff: 0.1", "cut: 0.1", "config.yaml: cutoff is missing"),
                ("method: tin", "method: idw", "remap: idw takes a distance above 0")):
            with self.subTest(new):
                text = (self.study / "config.yaml").read_text()
                self.change("config.yaml", old, new)
                run = snakemake(self.study, "--dry-run")
                self.assertEqual(run.returncode, 1)
                self.assertIn(message + "\n", run.stdout)
                (self.study / "config.yaml").write_text(text)


if __name__ == "__main__":
    sys.exit(unittest.main())
