"""Algorithms run by qgis_process, beside the same runs of the tool: the same files with the same bytes."""
import with_qgis  # first: it chooses the Python

import os
import subprocess
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

import samples

TOOL = os.environ["GRIDFORGE"]
QGIS_PROCESS = with_qgis.qgis_process()


@dataclass(frozen=True)
class Case:
    """An algorithm with its parameters, and the arguments of the tool for the same. In parameters names of samples are written
    with an `@` before them; those of outputs, which begin with `>`, lie in a folder of their own."""
    algorithm: str
    parameters: str
    arguments: str
    in_place: bool = False


# At least one of each folder of operations.
CASES = {
    "ops: max": Case("max", "INPUTS=@a.asc INPUTS=@b.asc INPUTS=@c.asc OUTPUT=>m.asc OUTPUT_SRC=>m_src.asc "
                     "OUTPUT_SRC_LEGEND=>m_src_legend.csv", "-max a.asc b.asc c.asc -out m.asc"),
    "ops: min as flt without sources": Case("max", "OPERATION=1 SRC=true INPUTS=@a.asc INPUTS=@c.asc OUTPUT=>m.flt",
                                            "-min -src a.asc c.asc -out m.flt"),
    "ops: conv": Case("conv", "INPUTS=@a.asc INPUTS=@b.asc FOLDER=>", "-conv a.asc b.asc"),
    "ops: dif": Case("dif", "INPUT=@a.asc INPUT_2=@c.asc OUTPUT=>d.asc OUTPUT_WD=>d_wd.asc DECIMAL=1",
                     "-dif a.asc c.asc -out d.asc -decimal1"),
    "ops: cutoff": Case("cd", "INPUT=@a.asc CD=20.5 OUTPUT=>k.asc", "-cd20.5 a.asc -out k.asc"),
    "ops: transform": Case("trans_m", "INPUT=@a.asc TRANS_M=-0.5 TRANS_C=3 OUTPUT=>t.flt",
                           "-trans_m-0.5 -trans_c3 a.asc -out t.flt"),
    "ops: extent": Case("fe", "INPUT=@a.asc OUTPUT=>e.asc", "-fe a.asc -out e.asc"),
    "ops: fuzzy": Case("fuzzy", "INPUTS=@a.asc INPUTS=@b.asc OUTPUT=>f.asc", "-fuzzy a.asc b.asc -out f.asc"),
    "ops: count": Case("count", "INPUT=@a.asc OUTPUT=>a_count.txt", "-count a.asc"),
    "ops: resize": Case("resize", "INPUT=@a.asc RESIZE=3 RESIZEMETHOD=0 OUTPUT=>r.asc", "-resize3 -rm_max a.asc -out r.asc"),
    "ops: classify": Case("classify", "INPUT=@a.asc CLASSIFY=@classes.csv OUTPUT=>c.asc",
                          "-classify classes.csv a.asc -out c.asc"),
    "ops: histogram": Case("histogram", "INPUT=@a.asc HISTOGRAM=@classes.csv OUTPUT=>a_histogram.csv",
                           "-histogram classes.csv a.asc"),
    "ops: multiply": Case("multiply", "INPUT=@a.asc INPUT_2=@b.asc OUTPUT=>p.asc", "-multiply a.asc b.asc -out p.asc"),
    "ops: points to a grid": Case("xyz", "INPUT=@cloud.xyz OUTPUT=>x.asc", "-xyz cloud.xyz -out x.asc"),
    "ops: stat": Case("stat", "INPUTS=@a.asc INPUTS=@b.asc INPUTS=@c.asc STAT=1,3 STAT_RANK=1,2 FOLDER=>",
                      "-statMean -statMin -statRank1 -statRank2 a.asc b.asc c.asc"),
    "ops: trim": Case("trim", "INPUTS=@a.asc INPUTS=@b.asc TRIM=@regions.mif GRIDFORMAT=2 FOLDER=>",
                      "-trim regions.mif -flt a.asc b.asc"),
    "sampling: calibration points": Case("cp", "INPUT=@a.asc CP=@points.mif CPSD=20 CPMM=5 OUTPUT=>q.mif OUTPUT_CN=>q_Cn.mif "
                                         "OUTPUT_TABLE=>q.csv", "-cp points.mif a.asc -cpsd20 -cpmm5 -out q.mif"),
    "sampling: long profile": Case("lp", "INPUT=@a.asc LP=@lines.mif LPMD=2 CPSD=4 CHECK=true FOLDER=>",
                                   "-lp lines.mif a.asc -lpmd2 -cpsd4 -check"),
    "sampling: breaklines": Case("brkline", "INPUT=@a.asc BRKLINE=@breaks.mif FOLDER=>", "-brkline breaks.mif a.asc"),
    "sampling: nodal areas": Case("na", "INPUT=@a.asc NA=@nodes.mif FOLDER=>", "-na nodes.mif a.asc"),
    "remap: tin": Case("remap", "WL=@b.asc DEM=@a.asc FOLDER=>", "-remap -wl b.asc -dem a.asc"),
    "remap: idw": Case("remap", "WL=@b.asc DEM=@a.asc BD=3 INPUTS=@c.asc FOLDER=>", "-remap -wl b.asc -dem a.asc -bd3 c.asc"),
    "network: sections": Case("xs", "INPUTS=@a.asc XS=@1d_cut_t.mif BRANCH=@1d_br_t.mif MAT=@b.asc MAT=@c.asc "
                              "DEFAULT_N=7 FOLDER=>",
                              "-xs 1d_cut_t.mif -branch 1d_br_t.mif a.asc -mat b.asc -mat c.asc -default_n7"),
    "network: control file": Case("nbc", "NBC=@net.nbc", "-nbc net.nbc", in_place=True),
    "damages": Case("damages", "DAMAGES=@floods.dmg OUTPUT=>h.mif OUTPUT_TABLE=>h.csv", "-damages floods.dmg -out h.mif"),
    "rainfall": Case("rf", "RF=@storm.rfc DECIMAL=1", "-rf storm.rfc -decimal1", in_place=True),
    "netcdf": Case("nc", "INPUTS=@a.asc INPUTS=@b.asc NC_COMP=4 OUTPUT=>s.nc", "-nc a.asc b.asc -nc_comp4 -out s"),
}
# Runs that the tool refuses, with its message.
REFUSED = {
    "grids that do not fit": (Case("dif", "INPUT=@a.asc INPUT_2=@small.asc OUTPUT=>d.asc", ""),
                              "ERROR - dimensions of grids do not match (see above for details)."),
    "a table that is none": (Case("classify", "INPUT=@a.asc CLASSIFY=@storm.rfc OUTPUT=>c.asc", ""),
                             "ERROR - Reading following line in classes file:"),
}


def page_block(word):
    """The lines of the only block of the page for users with this word at its fence."""
    page = Path(__file__).resolve().parents[2] / "docs" / "qgis.md"
    blocks = page.read_text(encoding="utf-8").split(f"```{word}\n")
    assert len(blocks) == 2, word
    return blocks[1].split("\n```\n")[0].splitlines()


def contents(folder):
    """Files below a folder, without what GDAL notes about grids that it has read."""
    return {str(path.relative_to(folder)): path.read_bytes() for path in sorted(folder.rglob("*"))
            if path.is_file() and not path.name.endswith((".aux.xml", ".stx"))}


def new_or_changed(folder, before):
    return {name: content for name, content in contents(folder).items() if before.get(name) != content}


class Runs:
    """All runs, several at a time, as each starts a QGIS."""

    def __init__(self, folder):
        self.folder = folder
        self.environment = with_qgis.environment(str(folder))
        subprocess.run([QGIS_PROCESS, "plugins", "enable", "gridforge_provider"], env=self.environment, check=True,
                       capture_output=True, timeout=120)
        cases = {**CASES, **{name: case for name, (case, _) in REFUSED.items()}}
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            self.done = dict(zip(cases, pool.map(self.by_qgis, cases, cases.values())))

    def by_qgis(self, name, case):
        """Console, status, the files of the run, and whether the inputs are as they were."""
        inputs, results = (self.folder / f"{name} {what}" for what in ("inputs", "results"))
        samples.write_samples(inputs)
        before = contents(inputs)
        parameters = [word.replace("=@", f"={inputs}/").replace("=>", f"={results}/") for word in case.parameters.split()]
        command = [QGIS_PROCESS, "run", f"gridforge:{case.algorithm}", "--", *parameters]
        run = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, encoding="utf-8", check=False, timeout=280)
        changed = new_or_changed(inputs, before)
        made = changed if case.in_place else contents(results) if results.exists() else {}
        return run.stdout, run.returncode, made, {} if case.in_place else changed


def by_tool(case):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        samples.write_samples(folder)
        before = contents(folder)
        console = subprocess.run([TOOL, "-b", *case.arguments.split()], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
                                 check=False, timeout=60).stdout
        return console.rstrip().endswith(b"\nFinished."), new_or_changed(folder, before)


class ToolboxTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        runs = Runs(Path(cls.scratch.name))
        cls.runs, cls.environment = runs.done, runs.environment

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def test_results_are_those_of_the_tool(self):
        for name, case in CASES.items():
            with self.subTest(name):
                finished, wanted = by_tool(case)
                self.assertTrue(finished)
                console, _, made, changed = self.runs[name]
                self.assertEqual(set(made), set(wanted), console)
                self.assertEqual(made, wanted)
                self.assertEqual(changed, {}, "inputs are as they were")

    def test_nothing_but_the_console_is_said(self):
        for name in CASES:
            with self.subTest(name):
                console, status, _, _ = self.runs[name]
                self.assertEqual(status, 0)
                self.assertIn("\nFinished.\n", console)
                self.assertNotRegex(console, r"(?i)traceback|resourcewarning|exception|could not load")

    def test_a_refused_run_gives_the_message_of_the_tool(self):
        for name, (_, message) in REFUSED.items():
            with self.subTest(name):
                console, status, made, changed = self.runs[name]
                self.assertRegex(console, r"(?m)^ERROR:|^Error|An error")
                self.assertIn(message, console.split("----------------\nInputs\n")[-1])
                self.assertNotEqual(status, 0)
                self.assertEqual((made, changed), ({}, {}))

    def test_the_commands_of_the_page_run(self):
        with tempfile.TemporaryDirectory() as folder:
            samples.write_samples(Path(folder))
            for name, sample in (("depth_1h.asc", "a.asc"), ("depth_6h.asc", "b.asc")):
                os.rename(Path(folder, sample), Path(folder, name))
            for command in page_block("sh"):
                self.assertEqual(command.split()[0], "qgis_process")
                run = subprocess.run([QGIS_PROCESS, *command.split()[1:]], cwd=folder, env=self.environment, capture_output=True,
                                     stdin=subprocess.DEVNULL, encoding="utf-8", check=False, timeout=280)
                self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
            made = contents(Path(folder))
        self.assertEqual({name for name in made if name.startswith(("depth.", "source."))},
                         {"depth.flt", "depth.hdr", "source.flt", "source.hdr"})


if __name__ == "__main__":
    unittest.main()
