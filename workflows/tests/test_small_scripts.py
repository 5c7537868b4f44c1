"""The control file of damages, the report, the records of steps and the states of Slurm's jobs."""
import json
import os
import subprocess
import sys
import time
import unittest

from with_workflow import WORKFLOW, FolderTest

import failures  # isort: skip

PICTURE = b"\x89PNG\r\n\x1a\n"
HEADING = "Property Type,Property ID, Floor Level, Multiplier,Damages 20.000 AEP (%),Damages 1.000 AEP (%),Average Annual Damage\n"
AVERAGE = "Property Type,Property ID,Floor Level,Multiplier,AAD,AAD Between,AAD Rarer,AAD More Frequent,Assumed\n"


class ScriptTest(FolderTest):
    def give(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return name

    def run_script(self, name, *arguments, **environment):
        run = subprocess.run([sys.executable, "-B", str(WORKFLOW / name), *arguments], cwd=self.folder, capture_output=True, text=True,
                             check=False, env={**os.environ, **environment})
        return run.returncode, run.stdout, run.stderr


class DamageControlTest(ScriptTest):
    def make(self, *arguments):
        return self.run_script("steps/damage_control.py", "a.dmg", "--out", "b.dmg", *arguments)

    def test_a_line_for_each_grid(self):
        self.give("a.dmg", "Read GIS Buildings == b.mif\r\nRegion Inspection Method == Max\r\n\r\n")
        self.assertEqual(self.make("--probabilities", "20", "0.2", "--levels", "x.flt", "y.flt"), (0, "", ""))
        self.assertEqual((self.folder / "b.dmg").read_text(), "Read GIS Buildings == b.mif\nRegion Inspection Method == Max\n"
                         "Read Result % 20 == x.flt\nRead Result % 0.2 == y.flt\n")

    def test_more_grids_than_a_control_file_takes_by_itself(self):
        self.give("a.dmg", "Read GIS Buildings == b.mif\n")
        numbers = [str(number) for number in range(1, 27)]
        self.assertEqual(self.make("--probabilities", *numbers, "--levels", *numbers), (0, "", ""))
        self.assertEqual((self.folder / "b.dmg").read_text().splitlines()[1:3], ["Maximum Results == 26", "Read Result % 1 == 1"])

    def test_a_control_file_with_grids_of_its_own(self):
        self.give("a.dmg", "Maximum Results == 3\n read result % 1 == l.flt\n")
        self.assertEqual(self.make("--probabilities", "1", "--levels", "x"), (
            1, "", "damage_control: a.dmg names grids by Read Result; the workflow adds those lines\n"))
        self.assertFalse((self.folder / "b.dmg").exists())


class ReportTest(ScriptTest):
    def make(self, *arguments):
        return self.run_script("steps/report.py", "r.html", "--title", "Up & down", *arguments)

    def test_sums_and_pictures(self):
        self.give("today.csv", HEADING + "House,A,1,1,0.,250.,0\nShop,B,1,1,1000.,2000.5,0\n")
        self.give("average.csv", AVERAGE + "All,,,,1234.5,1,2,3,all of it\n")
        self.give("maps/today/1pct_depth.png", PICTURE)
        self.assertEqual(self.make("--damages", "today.csv", "--averages", "average.csv", "--depths", "maps/today/1pct_depth.png"),
                         (0, "", ""))
        text = (self.folder / "r.html").read_text()
        for part in ("<title>Up &amp; down</title>", "<td>Damages 20.000 AEP (%)</td><td>1,000</td><td>1</td>",
                     "<td>Damages 1.000 AEP (%)</td><td>2,250</td><td>2</td>", "<td>Average over a year</td><td>1,234</td>",
                     "<p>all of it</p>", '<img alt="today, 1pct" src="data:image/png;base64,iVBORw0KGgo=">'):
            self.assertIn(part, text)
        self.assertNotIn("Differences", text)

    def test_a_table_without_buildings(self):
        self.give("today.csv", HEADING)
        self.give("average.csv", AVERAGE + "All,,,,0,0,0,0,\n")
        self.assertEqual(self.make("--damages", "today.csv", "--averages", "average.csv"),
                         (1, "", "report: today.csv has no buildings\n"))
        self.assertFalse((self.folder / "r.html").exists())


class ProgramTest(ScriptTest):
    def run_program(self, *command):
        status, _, error = self.run_script("steps/program.py", "--json", "r.json", "--out", "made", "--inputs", "given", "--", *command)
        return status, error, json.loads((self.folder / "r.json").read_text())

    def test_a_record_of_what_went_well(self):
        self.give("given", "abc")
        status, error, record = self.run_program("sh", "-c", "cp given made; echo beware >&2")
        self.assertEqual((status, error, record["outcome"]), (0, "beware\n", "finished"))
        self.assertEqual([(file["name"], file["size"], file["sha256"]) for file in record["inputs"] + record["outputs"]],
                         [("given", 3, None), ("made", 3, None)])

    def test_the_last_line_is_the_message(self):
        status, error, record = self.run_program("sh", "-c", "echo first >&2; echo sh: last >&2; exit 3")
        self.assertEqual((status, error), (1, "first\nprogram: sh: last\n"))
        self.assertEqual((record["outcome"], record["error"]), ("failed", "sh: last"))

    def test_a_program_that_says_nothing_or_is_missing(self):
        self.assertEqual(self.run_program("sh", "-c", "exit 3")[1], "program: sh ended with status 3\n")
        self.assertEqual(self.run_program("no_program")[1], "program: no_program: No such file or directory\n")


class FailuresTest(ScriptTest):
    def failed(self, since=0.0):
        return failures.failed_steps(self.folder / "records", since)

    def give_record(self, name, **values):
        record = {"build": "", "outcome": "failed", "error": None, "inputs": [{"name": "a.flt"}, {"name": "b.flt"}], **values}
        return self.folder / self.give(f"records/{name}.json", json.dumps(record))

    def test_messages_of_the_tool_and_of_scripts(self):
        self.give_record("good", outcome="finished")
        self.give_record("script", error="c.flt is no .flt")
        self.give_record("tool", build="a build", error="ERROR - Something")
        self.give_record("late", build="a build", outcome="timeout", inputs=[])
        self.assertEqual(self.failed(), ["late: timeout", "script: c.flt is no .flt",
                                         "tool: ERROR - Something (the last file opened was b.flt)"])

    def test_records_that_were_never_written(self):
        for text in ("", '{"outcome": '):
            self.give("records/fine/a.json", text)
            self.assertEqual(self.failed(), ["fine/a: ended without a record; see logs/fine/a.txt and, on a cluster, logs/slurm/"])

    def test_warnings_of_the_tool(self):
        self.give_record("a", outcome="finished", warnings=["WARNING - One", "WARNING - One"])
        self.give_record("b", outcome="finished", warnings=["WARNING - Two", "WARNING - One"])
        self.give("records/killed.json", "")
        self.assertEqual(failures.warnings(self.folder / "records", 0), ["a and 1 more: WARNING - One", "b: WARNING - Two"])
        self.assertEqual(failures.warnings(self.folder / "records", time.time() + 1000), [])

    def test_records_of_earlier_runs(self):
        os.utime(self.give_record("old"), (100, 100))
        os.utime(self.give_record("new"), (200, 200))
        self.assertEqual(self.failed(since=150), ["new: failed"])


class SlurmStatusTest(ScriptTest):
    def state(self, squeue, scontrol="exit 1"):
        for name, commands in (("squeue", squeue), ("scontrol", scontrol)):
            self.give(f"bin/{name}", f"#!/bin/sh\n{commands}\n")
            (self.folder / f"bin/{name}").chmod(0o755)
        status, out, error = self.run_script("profiles/slurm/slurm_status", "17;cluster",
                                             PATH=f"{self.folder / 'bin'}:{os.environ['PATH']}")
        self.assertEqual((status, error), (0, ""))
        return out.strip()

    def test_states_of_squeue(self):
        for state, told in (("COMPLETED", "success"), ("RUNNING", "running"), ("PENDING", "running"), ("REQUEUED", "running"),
                            ("COMPLETING", "running"), ("FAILED", "failed"), ("TIMEOUT", "failed"), ("CANCELLED", "failed"),
                            ("NODE_FAIL", "failed"), ("OUT_OF_MEMORY", "failed")):
            self.assertEqual(self.state(f'[ "$3" = --jobs=17 ] && echo {state}'), told, state)

    def test_a_job_that_squeue_does_not_know(self):
        self.assertEqual(self.state("exit 1", "echo 'JobId=17 JobName=a JobState=COMPLETED Reason=None'"), "success")
        self.assertEqual(self.state("exit 1", "echo 'JobId=17 JobState=FAILED'"), "failed")
        self.assertEqual(self.state("exit 1", "echo 'slurm_load_jobs error: Invalid job id specified' >&2; exit 1"), "failed")

    def test_nobody_answers(self):
        self.assertEqual(self.state("exit 1", "echo 'Unable to contact slurm controller' >&2; exit 1"), "running")


if __name__ == "__main__":
    sys.exit(unittest.main())
