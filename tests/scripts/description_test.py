#!/usr/bin/env python3
"""Holds gridforge.json against the pages of the operations and against runs of the tool.

GRIDFORGE_TOOL is the tool, GRIDFORGE_MANUAL_DIR the folder with gridforge.json.
"""
import json
import os
import re
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
with open(os.path.join(os.environ["GRIDFORGE_MANUAL_DIR"], "gridforge.json")) as description:
    TOOL = json.load(description)
OPERATIONS = {operation["name"]: operation for operation in TOOL["operations"]}

MIF = 'Version 300\nCharset "WindowsLatin1"\nDelimiter ","\nCoordSys NonEarth Units "m" Bounds (0, 0) (100, 100)\n'


def grid(add=0):
    rows = [" ".join(str(10 * row + column + add) for column in range(1, 10)) for row in range(9, 0, -1)]
    return "ncols 9\nnrows 9\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n" + "\n".join(rows) + "\n"


def layer(columns, objects):
    return MIF + "Columns %d\n" % len(columns) + "".join("  %s\n" % column for column in columns) + "Data\n\n" + objects


LINE = "Pline 2\n2 4.4\n8 4.4\n    Pen (1,2,0)\n"
SQUARE = "Region 1\n5\n1.5 1.5\n4.5 1.5\n4.5 4.5\n1.5 4.5\n1.5 1.5\n    Pen (1,2,0)\n"
FILES = {
    "a.asc": grid(), "b.asc": grid(1), "c.asc": grid(2), "table.csv": "Limit,Name\n20,low\n50,middle\n80,high\n",
    "points.mif": layer(["Obs Float", "Mark Char(20)"], "Point 4.4 4.4\n    Symbol (35,0,12)\n"), "points.mid": '55,"m"\n',
    "lines.mif": layer(["Label Char(20)"], LINE), "lines.mid": '"bed"\n',
    "breaks.mif": layer(["Z Float", "dZ Float", "Width Float", "Options Char(20)"], LINE), "breaks.mid": '7,3,0,"road"\n',
    "regions.mif": layer(["Name Char(20)"], SQUARE), "regions.mid": '"park"\n',
    "nodes.mif": layer(["ID Char(50)", "A Char(2)", "B Char(8)"] + ["%s Char(20)" % c for c in "CDEFGH"] +
                       ["I Float", "J Float", "Skew Float"], SQUARE),
    "nodes.mid": '"pond.csv","S","Node","a","b","c","d","e","f",1.5,2.5,0\n',
    "1d_cut_t.mif": layer(["Name Char(50)", "Distance Float", "Split_TF Char(12)", "Extract_TF Char(12)", "Ex_Method Char(20)",
                           "Buf_Method Char(20)", "Buf_Dist Float"], "Line 5 2 5 7\n"),
    "1d_cut_t.mid": '"bank",0,"T","T","","",0\n',
    "1d_br_t.mif": layer(["Name Char(30)", "n Float", "UCS Char(1)", "Form_Loss Float"], "Pline 3\n1 4\n4 4\n8 4\n"),
    "1d_br_t.mid": '"Main",0.03,"T",0.6\n',
    "net.nbc": "Read GIS Branch == 1d_br_t.mif\nRead GIS XS == 1d_cut_t.mif\nSet XS dx == 1\nRead Grid Z == a.asc\n"
               "Write Check == On\n",
    "floods.dmg": "Read GIS Building == houses.mif\nRead Curve House == house.csv\nRead Result % 1 == a.asc\n",
    "house.csv": "Depth,Damage\n0,0\n100,10000\n",
    "houses.mif": layer(["Prop_Type Char(20)", "Prop_ID Char(20)", "FFL Float", "Multiplier Float"],
                        "Point 4.4 4.4\n    Symbol (35,0,12)\n"),
    "houses.mid": '"House","1",50,1\n',
    "storm.rfc": "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 20, 30\nRainfall Hyetograph p == p.csv\n"
                 "Rainfall Hyetograph q == q.csv\nRF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\n",
    "p.csv": "Time,Depth\n0,2\n0.5,4\n", "q.csv": "Time,Depth\n0,10\n0.5,20\n",
    "gauges.mif": layer(["Name Char(40)", "F1 Float", "F2 Float"],
                        "Point 5 5\n    Symbol (35,0,12)\nPoint 25 15\n    Symbol (35,0,12)\n"),
    "gauges.mid": '"p",1,1\n"q",1,1\n',
    "cloud.xyz": "".join("%d %d %d\n" % (x, y, x + y) for y in (1, 2, 3) for x in (1, 2, 3)),
}

# The arguments that ask for each operation, without inputs.
ASKED = {
    "max": "-max", "conv": "-conv", "nc": "-nc -nc_part1", "dif": "-dif", "cd": "-cd20.5", "trans_m": "-trans_m2", "fe": "-fe",
    "fuzzy": "-fuzzy", "count": "-count", "resize": "-resize2", "classify": "-classify table.csv",
    "histogram": "-histogram table.csv", "cp": "-cp points.mif", "lp": "-lp lines.mif -lpmd2 -cpsd4",
    "brkline": "-brkline breaks.mif", "xs": "-xs 1d_cut_t.mif", "nbc": "-nbc net.nbc", "na": "-na nodes.mif",
    "multiply": "-multiply", "xyz": "-xyz", "trim": "-trim regions.mif", "damages": "-damages floods.dmg", "rf": "-rf storm.rfc",
    "remap": "-remap -wl a.asc -dem b.asc", "stat": "-statMean -statRank1",
}
# What the names of outputs stand for in those runs.
WORDS = {"first": {"xyz": "cloud"}, "second": "b", "input": "a", "out": "o", "value": {"cd": "20.5", "resize": "2"}, "levels": "a",
         "layer": {"cp": "points", "lp": "lines", "brkline": "breaks", "damages": "houses"}, "label": "bed", "rest": "_t",
         "table": {"xs": "bank.csv", "nbc": "bank.csv", "na": "pond.csv"}, "control": {"nbc": "net", "rf": "storm"},
         "region": "park", "rank": "1", "time": "0.5", "n": "100"}
ENDINGS = {"grid": (".asc", ".flt"), "layer": (".mif",), "table": ("",), "netcdf": ("",)}
BESIDE = {".mif": ".mid", ".flt": ".hdr"}


# What these flags turn on is off without them, whatever their number would be.
NEVER_BY_DEFAULT = {"-cpmm"}


def section(page, heading):
    with open(os.path.join(ROOT, page)) as file:
        return re.search(rf"^## {heading}\n(.*?)(?=^## |\Z)", file.read(), re.M | re.S).group(1)


def flag_rows(page):
    """Of the table of flags of a page: {flag: what it says of it}."""
    rows = re.findall(r"^\| (.*?) \| (.*) \|$", section(page, "Flags"), re.M)
    return {flag: text for flags, text in rows for flag in re.findall(r"-[A-Za-z_]+", flags)}


class Run:
    """One run in a folder of its own: its console, whether it went well, and the files it made."""

    def __init__(self, arguments):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in FILES.items():
                with open(os.path.join(folder, name), "w") as file:
                    file.write(text)
            self.console = subprocess.run([os.environ["GRIDFORGE_TOOL"], "-b", *arguments], cwd=folder, check=False, timeout=60,
                                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, encoding="latin-1").stdout
            self.made = {name for name in os.listdir(folder) if name not in FILES}
        self.finished = self.console.rstrip("\n").endswith("\nFinished.")


def inputs_of(name, count):
    return ["cloud.xyz"] * count if name == "xyz" else (["a.asc", "b.asc", "c.asc"] * count)[:count]


def fewest(name):
    return OPERATIONS[name]["inputs"]["min"]


# Outputs that those runs do not make, though no flag keeps them from it: (operation, name or, where rows share it, name after -out).
OTHERWISE = {
    ("cd", "{second}_filtered{value}"), ("trim", "{out}_{input}"), ("trim", "{out}_{region}"),
    ("trim", "{out}_{input}_{region}"), ("rf", "{control}.nc"), ("rf", "rf_index"), ("rf", "rf_fac"), ("rf", "rf_giit"),
    ("remap", "{levels}_d2_iter{n}"), ("remap", "{input}_remap"),
}


def expected(name, arguments):
    """The files by the rows of the outputs: {row: names of which one must be there}."""
    def given(flags):
        return any(argument.startswith(flag) for flag in flags for argument in arguments)
    rows = {}
    for output in OPERATIONS[name]["outputs"]:
        if output["when"] and not given(output["when"]) or given(output["unless"]):
            continue
        if {(name, output["name"]), (name, output["outName"])} & OTHERWISE:
            continue
        rule = output["outName"] if "-out" in arguments and output["outName"] else output["name"]
        words = {word: value.get(name, "a") if isinstance(value, dict) else value for word, value in WORDS.items()}
        rows[output["name"]] = [rule.format_map(words) + ending for ending in ENDINGS[output["kind"]]]
    return rows


class DescriptionTest(unittest.TestCase):
    def test_every_operation_is_tried_here(self):
        self.assertEqual(set(ASKED), set(OPERATIONS))

    def test_pages_name_the_flags_that_are_taken(self):
        for name, operation in OPERATIONS.items():
            with open(os.path.join(ROOT, operation["page"])) as file:
                page = file.read()
            usage = re.search(r"## Usage\n+```usage\n(.*?)```", page, re.S).group(1)
            told = set(re.findall(r"-[A-Za-z_]+", usage))
            taken = {flag["flag"] for part in ("flags", "options") for flag in operation[part]}
            self.assertEqual(told, taken | {flag["flag"] for flag in TOOL["commonOptions"]}, name)

    def test_tables_of_flags_hold_what_is_taken(self):
        """The options that the index of the pages explains for all may be left out; a page repeats them where it has more to say."""
        told_for_all = set(re.findall(r"`(-[a-z]+)", section("docs/operations/README.md", "Names and format of outputs")))
        for name, operation in OPERATIONS.items():
            rows = flag_rows(operation["page"])
            valued = {asking["flag"]: asking for asking in operation["flags"] if asking["kind"] != "switch"}
            options = {option["flag"]: option for option in operation["options"]}
            taken, wanted = set(), set()
            for flag in [*valued.values(), *options.values()]:
                words = [word.split("<")[0] for word in flag["choices"]] if flag["flag"] == "-stat" else [""]
                taken |= {flag["flag"] + word for word in words}
                wanted |= {flag["flag"] + word for word in words if flag["flag"] not in told_for_all}
            self.assertLessEqual(wanted, set(rows), (name, "not in the table"))
            self.assertLessEqual(set(rows), taken | {asking["flag"] for asking in operation["flags"]}, (name, "not taken"))
            for flag in set(rows) & set(valued | options) - told_for_all - NEVER_BY_DEFAULT:
                row = (valued | options)[flag]
                if row["kind"] in ("number", "integer") and row["default"]:
                    self.assertRegex(rows[flag], rf"(?<![\d.]){row['default']:g}(?![\d.]*\d)", (name, flag, "default"))

    def test_the_index_describes_operations_in_the_same_words(self):
        with open(os.path.join(ROOT, "docs", "operations", "README.md")) as file:
            lines = re.findall(r"^\| `-.*\[.*?\]\((.*?)\) \| (.*) \|$", file.read(), re.M)
        self.assertEqual({(page, text.replace("`", "")) for page, text in lines},
                         {(os.path.basename(o["page"]), o["description"]) for o in OPERATIONS.values()})

    def test_the_completion_offers_the_same_flags(self):
        with open(os.path.join(os.environ["GRIDFORGE_MANUAL_DIR"], "gridforge.bash")) as file:
            values = re.search(r"local -A takes=\((.*?)\)\n", file.read(), re.S).group(1)
        offered = set(re.findall(r"\[(-\w+)\]=", values))
        told = set()
        for flags in [TOOL["commonOptions"], *(o[part] for o in OPERATIONS.values() for part in ("flags", "options"))]:
            for flag in flags:
                words = [word.split("<")[0] for word in flag["choices"]] if flag["flag"] == "-stat" else [""]
                told |= {flag["flag"] + word for word in words}
        self.assertEqual(told, offered)

    def test_values_are_what_their_kind_says(self):
        for operation in OPERATIONS.values():
            for flag in operation["flags"] + operation["options"]:
                kind, default = flag["kind"], flag["default"]
                self.assertEqual(flag["form"] == flag["flag"], kind == "switch", flag)
                self.assertEqual(bool(flag["choices"]), kind == "choice", flag)
                self.assertEqual(flag["form"].startswith(flag["flag"] + " <"), kind != "switch" and not flag["glued"], flag)
                if kind in ("number", "integer"):
                    self.assertIsInstance(default, (int, float, type(None)), flag)
                if flag["glued"] and kind == "integer":
                    self.assertIsInstance(default, (int, type(None)), flag)

    def test_fewer_inputs_are_refused(self):
        for name in OPERATIONS:
            self.assertTrue(Run(ASKED[name].split() + inputs_of(name, fewest(name))).finished, name)
            if fewest(name) > 0:
                self.assertFalse(Run(ASKED[name].split() + inputs_of(name, fewest(name) - 1)).finished, name)

    def test_more_inputs_are_refused_or_ignored(self):
        for name, operation in OPERATIONS.items():
            rule = operation["inputs"]
            if rule["max"] > 10:
                continue
            beyond = rule["max"] + (2 if rule["thenOutputName"] else 1)
            run = Run(ASKED[name].split() + inputs_of(name, beyond))
            self.assertEqual(run.finished, rule["more"] == "ignored", (name, run.console))

    def test_outputs_of_other_runs_are_described(self):
        described = {(name, rule) for name, operation in OPERATIONS.items() for output in operation["outputs"]
                     for rule in (output["name"], output["outName"])}
        self.assertLessEqual(OTHERWISE, described)

    def test_runs_write_what_is_described(self):
        takes_out = [name for name in OPERATIONS if any(o["flag"] == "-out" for o in OPERATIONS[name]["options"])]
        cases = [(name, "") for name in OPERATIONS] + [(name, "-out o.mif" if name in ("cp", "damages") else "-out o")
                                                       for name in takes_out]
        cases += [("max", "-src"), ("dif", "-change"), ("lp", "-check"), ("brkline", "-check"), ("xs", "-branch 1d_br_t.mif"),
                  ("remap", "-bd2"), ("stat", "-statAll")]
        for name, more in cases:
            arguments = ASKED[name].split() + more.split()
            run = Run(arguments + inputs_of(name, fewest(name)))
            self.assertTrue(run.finished, (name, more, run.console))
            left = set(run.made)
            for rule, names in expected(name, arguments).items():
                found = [made for made in names if made in run.made]
                self.assertTrue(found, (name, more, rule, names, run.made))
                for made in found:
                    base, ending = os.path.splitext(made)
                    left -= {made, base + BESIDE.get(ending, ending)}
            left -= {"storm_t0..asc"}  # a second time of the same row
            self.assertFalse(left, (name, more))


if __name__ == "__main__":
    unittest.main()
