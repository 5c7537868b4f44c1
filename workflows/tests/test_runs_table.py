"""What is refused of a table of runs, and what the workflow takes from one."""
import os
import sys
import unittest
from decimal import Decimal

import with_workflow
from with_workflow import FolderTest

import ensemble  # isort: skip
import runs_table

assert with_workflow.WORKFLOW.is_dir()

HEADING = "scenario,probability,duration,pattern,depth,level\n"


class TableTest(FolderTest):
    def give(self, text):
        path = self.folder / "runs.csv"
        path.write_text(text)
        return path

    def refused(self, text, message):
        path = self.give(text)
        with self.assertRaises(runs_table.TableError) as caught:
            runs_table.read_runs(path)
        self.assertEqual(str(caught.exception), message.replace("TABLE", str(path)))

    def test_what_is_no_run(self):
        self.refused("scenario,probability,duration,pattern,depth\n", "TABLE: the first line has no column level")
        self.refused(HEADING, "TABLE has no runs")
        for text in ("x", "0", "-1", "100.5", "nan", ""):
            self.refused(HEADING + f"a,{text},1h,p1,d,l\n",
                         f"TABLE, line 2: the probability is a number of per cent above 0 and at most 100, not: {text}")
        for row, what in (("a b,1,1h,p1,d,l", "scenario is a name of letters, digits, + and -, not: a b"),
                          ("a,1,1_h,p1,d,l", "duration is a name of letters, digits, + and -, not: 1_h"),
                          ("a,1,1h,,d,l", "pattern is a name of letters, digits, + and -, not: ")):
            self.refused(HEADING + row + "\n", f"TABLE, line 2: the {what}")
        self.refused(HEADING + "a,1,1h,p1,d,\n", "TABLE, line 2: a run has a depth grid and a level grid")

    def test_runs_that_contradict_each_other(self):
        self.refused(HEADING + "a,1,1h,p1,d,l\na,1.0,1h,p1,e,m\n", "TABLE, line 3: the same run as in line 2")
        self.refused(HEADING + "a,1,1h,p1,d,l\na,1,1h,none,,\n", "TABLE, line 3: there are runs of what this line leaves out")

    def test_a_grid_that_is_named_twice(self):
        self.refused(HEADING + "a,1,1h,p1,d,l\na,1,6h,p1,e,l\n", "TABLE, line 3: the grid l is named in line 2 already")
        self.refused(HEADING + "a,1,1h,p1,d,d\n", "TABLE, line 2: the grid d is named in line 2 already")

    def test_a_table_in_another_encoding(self):
        path = self.folder / "runs.csv"
        path.write_bytes((HEADING + "a,1,1h,p1,d\xfc,l\n").encode("latin-1"))
        with self.assertRaises(runs_table.TableError) as caught:
            runs_table.read_runs(path)
        self.assertEqual(str(caught.exception), f"{path} is not in UTF-8; save it anew with that encoding")

    def test_a_missing_duration(self):
        text = HEADING + "a,1,1h,p1,d,l\na,1,6h,p1,e,m\na,0.20,1h,p1,f,n\n"
        self.refused(text, "TABLE: a has no run of 0.2 % and 6h; if that is meant, add the line a,0.2,6h,none,,")
        runs = runs_table.read_runs(self.give(text + "a,0.2,6h,none,,\n"))
        self.assertEqual([run.was_run for run in runs], [True, True, True, False])
        self.refused(HEADING + "a,1,1h,p1,d,l\nb,5,1h,p1,e,m\n",
                     "TABLE: a has no run of 5 % and 1h; if that is meant, add the line a,5,1h,none,,")

    def test_names_of_storms(self):
        for text, name in (("1", "1pct"), ("0.2", "0p2pct"), ("20", "20pct"), ("100", "100pct"), ("0.05", "0p05pct")):
            self.assertEqual(runs_table.storm_name(Decimal(text)), name)
        self.assertEqual(runs_table.read_runs(self.give(HEADING + "a,10.0,1h,p1,d,l\n"))[0].storm, "10pct")

    def ensemble(self, rows, **config):
        settings = {"runs": self.give(HEADING + rows), "statistic": "median", "most_grids": 500, "most_patterns": 10, **config}
        return ensemble.Ensemble(settings)

    def test_uneven_numbers_of_patterns(self):
        rows = "a,1,1h,p1,d,l\na,1,1h,p2,e,m\n"
        self.assertEqual(self.ensemble(rows).uneven(), [])
        self.assertEqual(self.ensemble(rows + "b,1,1h,p1,f,n\n").uneven(), ["patterns/b/1pct_1h has 1 pattern, others have up to 2"])

    def test_a_level_grid_of_each_scenario(self):
        self.assertEqual(self.ensemble("a,1,1h,p1,d,l\na,1,1h,p2,e,m\nb,1,1h,p1,f,n\n").first_levels(), ["l", "n"])

    def test_settings_that_are_missing(self):
        whole = {"runs": "r", "ground": "g", "statistic": "max", "cutoff": 0, "remap": {"method": "tin"}, "most_grids": 1,
                 "most_patterns": 1}
        ensemble.require_settings(whole)
        cases = [({**whole, name: None}, name) for name in whole if name != "remap"]
        cases += [({**whole, "remap": None}, "remap.method"), ({**whole, "damages": {"assumptions": ""}}, "damages.control")]
        cases += [({"runs": "r"}, "ground")]
        for config, missing in cases:
            with self.assertRaises(runs_table.TableError) as caught:
                ensemble.require_settings(config)
            self.assertEqual(str(caught.exception), f"config.yaml: {missing} is missing")

    def test_versions_of_snakemake(self):
        ensemble.require_snakemake("7.32.4")
        with self.assertRaises(runs_table.TableError) as caught:
            ensemble.require_snakemake("8.4.0")
        self.assertEqual(str(caught.exception), "the workflow is for Snakemake 7; this is 8.4.0")

    def test_a_single_pattern_needs_no_statistic(self):
        study = self.ensemble("a,1,1h,p1,d.asc,l.asc\na,1,6h,p1,e.asc,m.asc\n")
        self.assertEqual((study.statistics(many=False), study.statistics(many=True)), ([], []))
        self.assertEqual(study.maximum_of("peaks/a/1pct_level"), ["l.asc", "m.asc"])

    def test_statistics_by_the_tool_and_by_the_script(self):
        rows = "".join(f"a,1,1h,p{n},d{n},l{n}\n" for n in range(3)) + "".join(f"a,1,6h,p{n},e{n},m{n}\n" for n in range(4))
        study = self.ensemble(rows, most_patterns=3)
        self.assertEqual(study.statistics(many=False), ["patterns/a/1pct_1h_depth", "patterns/a/1pct_1h_level"])
        self.assertEqual(study.statistics(many=True), ["patterns/a/1pct_6h_depth", "patterns/a/1pct_6h_level"])

    def test_parts_of_a_long_maximum(self):
        rows = "".join(f"a,1,1h,p{n},d{n},l{n}\n" for n in range(5))
        study = self.ensemble(rows, statistic="max", most_grids=2)
        self.assertEqual(study.parts("patterns/a/1pct_1h_level"), [["l0", "l1"], ["l2", "l3"], ["l4"]])
        self.assertEqual(study.maxima(in_parts=True), ["patterns/a/1pct_1h_depth", "patterns/a/1pct_1h_level"])
        self.assertEqual(study.maxima(in_parts=False), ["peaks/a/1pct_depth", "peaks/a/1pct_level"])

    def test_differences_of_what_both_scenarios_have(self):
        study = self.ensemble("a,1,1h,p1,d,l\nb,1,1h,p1,e,m\na,5,1h,p1,f,n\nb,5,1h,none,,\n", differences=[["b", "a"]])
        self.assertEqual(study.compared(), [("b", "a", "1pct")])

    def test_columns_of_damages_begin_with_the_most_frequent_flood(self):
        study = self.ensemble("a,1,1h,p1,d,l\na,20,1h,p1,e,m\na,0.2,1h,p1,f,n\n")
        self.assertEqual(study.columns("a"), ["20", "1", "0.2"])

    def test_files_that_belong_to_others(self):
        for name in ("b.mif", "B.MID", "s.shp", "s.dbf", "s.shx", "c.csv", "g.flt", "g.hdr", "g.prj"):
            (self.folder / name).write_text(name)
        names = [str(self.folder / name) for name in ("b.mif", "s.shp", "c.csv", "g.flt", "no.flt")]
        self.assertEqual([os.path.basename(name) for name in ensemble.with_companions(names)],
                         ["b.mif", "B.MID", "s.shp", "s.shx", "s.dbf", "c.csv", "g.flt", "g.hdr", "no.flt"])

    def test_the_state_of_files(self):
        for name in ("g.flt", "g.hdr"):
            (self.folder / name).write_text(name)
            os.utime(self.folder / name, (1000, 1000))
        names = [str(self.folder / "g.flt")]
        states = [ensemble.state_of(names)]
        self.assertEqual(ensemble.state_of(names), states[0])
        os.utime(self.folder / "g.flt", (900, 900))
        states.append(ensemble.state_of(names))
        os.utime(self.folder / "g.hdr", (900, 900))
        states.append(ensemble.state_of(names))
        (self.folder / "g.flt").write_text("longer than before")
        os.utime(self.folder / "g.flt", (900, 900))
        states.append(ensemble.state_of(names))
        (self.folder / "g.flt").unlink()
        states.append(ensemble.state_of(names))
        self.assertEqual(len(set(states)), 5)

    def test_files_of_a_control_file(self):
        path = self.folder / "a.dmg"
        path.write_text("Read GIS Buildings == b.mif ! houses\n# Read Curve Old == old.csv\nread curve Shop==c/shop.csv\n"
                        "READ MI BUILDING == more.shp\nRead Result % 1 == l.asc\nMaximum Damage Curves == 3\n")
        self.assertEqual(ensemble.files_of_control(path), ["b.mif", "c/shop.csv", "more.shp"])


if __name__ == "__main__":
    sys.exit(unittest.main())
