"""gridforge-aad: by hand, on tables of the tool, and on tables that are not whole."""
import csv
import io
import unittest

from tests.tool_case import MIF, ToolCase, asc

HEADING = "Property Type,Property ID, Floor Level, Multiplier"
# Of the area under straight lines between (0.2 %, 100), (1 %, 60) and (20 %, 10): the widths are 0.8 and 19 per cent, the mean
# heights 80 and 35.
BETWEEN = (0.8 * 80 + 19 * 35) / 100


def table(probabilities, *rows):
    return (HEADING + "".join(f",Damages {p} AEP (%)" for p in probabilities) + ",Average Annual Damage\r\n" +
            "".join(row + "\r\n" for row in rows))


class AadTest(ToolCase):
    def rows(self, *arguments):
        """The lines of the output as dictionaries by its heading."""
        return list(csv.DictReader(io.StringIO(self.good("aad", *arguments))))

    def amounts(self, *arguments, line=0):
        row = self.rows(*arguments)[line]
        return [float(row[name]) for name in ("AAD", "AAD Between", "AAD Rarer", "AAD More Frequent")]

    def give_house(self):
        self.give("t.csv", table(("20.000", "1.000", "0.200"), '"House","h1",10.5,1.,10.,60.,100.,0.'))

    def test_trapezoids_between_the_probabilities_and_nothing_outside(self):
        self.give_house()
        self.assertEqual(round(BETWEEN, 2), 7.29)
        self.assertEqual(self.good("aad", "t.csv"),
                         "Property Type,Property ID,Floor Level,Multiplier,AAD,AAD Between,AAD Rarer,AAD More Frequent,Assumed\n"
                         "House,h1,10.5,1.,7.29,7.29,0.00,0.00,"
                         "rarer than 0.2 %: not counted; more frequent than 20 %: not counted\n"
                         "All,,,,7.29,7.29,0.00,0.00,rarer than 0.2 %: not counted; more frequent than 20 %: not counted\n")

    def test_holds_the_damage_of_the_rarest_flood(self):
        self.give_house()
        self.assertEqual(self.amounts("t.csv", "--rarer", "hold"), [7.49, 7.29, 0.2, 0])  # 0.2 % of 100
        self.assertEqual(self.rows("t.csv", "--rarer", "hold")[0]["Assumed"],
                         "rarer than 0.2 %: as at 0.2 %; more frequent than 20 %: not counted")

    def test_holds_the_damage_of_the_most_frequent_flood(self):
        self.give_house()
        self.assertEqual(self.amounts("t.csv", "--frequent", "hold"), [15.29, 7.29, 0, 8])  # 80 % of 10
        self.assertEqual(self.rows("t.csv", "--frequent", "hold")[0]["Assumed"],
                         "rarer than 0.2 %: not counted; more frequent than 20 %: as at 20 %")

    def test_damage_falls_to_nothing_at_a_probability(self):
        self.give_house()
        self.assertEqual(self.amounts("t.csv", "--frequent", "zero:50"), [8.79, 7.29, 0, 1.5])  # half of 30 % of 10
        self.assertEqual(self.rows("t.csv", "--frequent", "zero:50")[0]["Assumed"],
                         "rarer than 0.2 %: not counted; more frequent than 20 %: falling to 0 at 50 %")
        self.assertEqual(self.amounts("t.csv", "--frequent", "zero:20"), [7.29, 7.29, 0, 0])

    def test_all_is_the_sum_of_the_buildings(self):
        self.give("t.csv", table(("10.000", "1.000"), '"A","1",0.,1.,0.,200.,0.', '"B","2",0.,1.,50.,150.,0.'))
        # 9 % of the means 100 and 100; 1 % of 200 and 150; 90 % of 0 and 50
        arguments = ("t.csv", "--rarer", "hold", "--frequent", "hold")
        self.assertEqual(self.amounts(*arguments, line=0), [11, 9, 2, 0])
        self.assertEqual(self.amounts(*arguments, line=1), [55.5, 9, 1.5, 45])
        self.assertEqual(self.amounts(*arguments, line=2), [66.5, 18, 3.5, 45])

    def test_cents_that_lines_round_away_count_in_the_sum(self):
        self.give("t.csv", table(("2.000", "1.000"), *['"A","1",0.,1.,0.4,0.4,0.'] * 10))  # 0.004 each
        self.assertEqual([row["AAD"] for row in self.rows("t.csv")], ["0.00"] * 10 + ["0.04"])

    def test_order_of_columns_does_not_count(self):
        self.give("t.csv", table(("1.000", "0.200", "20.000"), '"House","h1",10.5,1.,60.,100.,10.,0.'))
        self.assertEqual(self.amounts("t.csv", "--rarer", "hold"), [7.49, 7.29, 0.2, 0])

    def test_of_equal_probabilities_the_highest_counts_or_the_mean(self):
        # At 1 % the building has 60 and 20: with 20 the mean heights are 60 and 15, with their mean of 40 they are 70 and 25.
        for order in ((60, 20), (20, 60)):
            with self.subTest(order=order):
                self.give("t.csv", table(("20.000", "1.000", "1.000", "0.200"),
                                         '"House","h1",10.5,1.,10.,%d.,%d.,100.,0.' % order))
                self.assertEqual(self.amounts("t.csv")[0], 7.29)
                mean = round((0.8 * 70 + 19 * 25) / 100, 2)
                self.assertEqual(self.amounts("t.csv", "--equal", "mean")[0], mean)
        self.assertTrue(self.rows("t.csv")[0]["Assumed"].endswith("; equal probabilities: highest"))
        self.assertTrue(self.rows("t.csv", "--equal", "mean")[0]["Assumed"].endswith("; equal probabilities: mean"))

    def test_one_probability_needs_an_assumption(self):
        self.give("t.csv", table(("1.000",), '"House","h1",10.5,1.,60.,0.'))
        self.fails("aad", "all floods have one probability, so nothing lies between: choose --rarer or --frequent", "t.csv")
        self.assertEqual(self.amounts("t.csv", "--rarer", "hold"), [0.6, 0, 0.6, 0])
        self.assertEqual(self.amounts("t.csv", "--frequent", "zero:11"), [3, 0, 0, 3])

    def test_names_with_commas_quotes_and_other_bytes_stay(self):
        self.give("t.csv", table(("2.000", "1.000"), '"House, brick","the ""old"" one \udce4",0.,1.,1.,1.,0.'))
        line = self.good("aad", "t.csv").splitlines()[1]
        self.assertEqual(line.split(",0.,")[0], '"House, brick","the ""old"" one \udce4"')
        self.good("aad", "t.csv", "--out", "o.csv")
        self.assertIn(b"one \xe4", (self.folder / "o.csv").read_bytes())

    def test_given_probabilities_stand_for_those_of_the_heading(self):
        self.give("t.csv", table(("1.000", "0.000"), '"A","1",0.,1.,50.,100.,0.'))
        self.fails("aad", "t.csv: the probability of column 6 is 0: the heading has three decimals, so give the probabilities "
                   "with --aep", "t.csv")
        self.assertEqual(self.amounts("t.csv", "--aep", "1,0.0001", "--rarer", "hold")[1], 0.75)  # 0.9999 % of 75 is 0.749925

    def test_writes_a_file_whole_and_replaces_none_unasked(self):
        self.give_house()
        printed = self.good("aad", "t.csv")
        self.assertEqual(self.good("aad", "t.csv", "--out", "o.csv"), "")
        self.assertEqual(self.text("o.csv"), printed)
        self.assertEqual(self.files(), ["o.csv", "t.csv"])
        self.fails("aad", "o.csv is there already; --overwrite replaces it", "t.csv", "--out", "o.csv")
        self.comes_second("p.csv", "aad", "t.csv", "--out", "p.csv")
        self.good("aad", "t.csv", "--out", "o.csv", "--overwrite", "--rarer", "hold")
        self.assertIn("7.49", self.text("o.csv"))
        self.fails("aad", "t.csv is an input; give the output another name", "t.csv", "--out", "t.csv", "--overwrite")
        self.fails("aad", "the folder of none/o.csv does not exist", "t.csv", "--out", "none/o.csv")

    def test_refuses_what_is_no_table_of_damages(self):
        self.fails("aad", "none.csv: No such file or directory", "none.csv")
        self.give("t.csv", "a,b\n1,2\n")
        self.fails("aad",
                   "t.csv is not a table of -damages: its heading does not begin with Property Type,Property ID, Floor Level"
                   ", Multiplier", "t.csv")
        self.give("t.csv", table(("1.000", "2.000")))
        self.fails("aad", "t.csv has no building", "t.csv")
        self.give("t.csv", table((), '"A","1",0.,1.,0.'))
        self.fails("aad", "t.csv has no column of damages", "t.csv")
        self.give("t.csv", HEADING + ",Losses,Average Annual Damage\n")
        self.fails("aad", "t.csv: column 5 is not one of damages: Losses", "t.csv")

    def test_refuses_values_that_are_no_numbers(self):
        for value in ("*******", "NaN", "Infinity", ""):
            self.give("t.csv", table(("2.000", "1.000"), f'"A","1",0.,1.,1.,{value},0.'))
            self.fails("aad", f"t.csv: line 2: the value of column 6 is not a number: {value}", "t.csv")
        self.give("t.csv", table(("2.000", "****"), '"A","1",0.,1.,1.,2.,0.'))
        self.fails("aad", "t.csv: the probability of column 6 is not a number: ****", "t.csv")
        self.give("t.csv", table(("2.000", "101.000"), '"A","1",0.,1.,1.,2.,0.'))
        self.fails("aad", "t.csv: the probability of column 6 is not between 0 and 100 %: 101", "t.csv")

    def test_refuses_lines_that_were_cut(self):
        self.give("t.csv", table(("2.000", "1.000"), '"A","1",0.,1.,1.,2.,0.', '"A","1",0.,1.,1.'))
        self.fails("aad", "t.csv: line 3: 5 values where 7 are expected; the tool cuts lines at 1000 characters", "t.csv")

    def test_a_heading_that_was_cut_needs_the_probabilities(self):
        floods = 50
        whole = table([f"{p}.000" for p in range(floods, 0, -1)], '"A","1",0.,1.,' + "10.," * floods + "0.")
        heading, record = whole.splitlines()
        self.give("t.csv", heading[:1000] + "\n" + record + "\n")
        self.fails("aad",
                   "t.csv: the heading does not end with Average Annual Damage; the tool cuts lines at 1000 characters, so "
                   "give the probabilities of all columns with --aep", "t.csv")
        given = ",".join(str(p) for p in range(floods, 0, -1))
        self.assertEqual(self.amounts("t.csv", "--aep", given)[0], 4.9)  # 49 % of 10

    def test_refuses_wrong_options(self):
        self.give_house()
        self.fails("aad", "--aep: 2 probabilities for 3 columns of damages in t.csv", "t.csv", "--aep", "1,2")
        self.fails("aad", "--aep: the probability 2 is not between 0 and 100 %: -2", "t.csv", "--aep", "1,-2,3")
        self.fails("aad", "--frequent: no damage at 10 %, but the table has a flood of 20 %", "t.csv", "--frequent", "zero:10")
        self.fails("aad", "error: argument --frequent: none, hold or zero:PERCENT is expected, not zero", "t.csv", "--frequent",
                   "zero", status=2)
        self.fails("aad", "error: argument --aep: numbers with commas between are expected, not 1;2", "t.csv", "--aep", "1;2",
                   status=2)

    def test_runs_as_a_process(self):
        self.give_house()
        run = self.process("aad", "t.csv")
        self.assertEqual((run.status, run.error, run.out), (0, "", self.good("aad", "t.csv")))

    def test_takes_the_table_of_a_run(self):
        # One house with its floor at 10 and 1000 a metre: the levels 10.5, 12 and 14 give 500, 2000 and 4000.
        for name, level in (("a", 14), ("b", 12), ("c", 10.5)):
            self.give(f"{name}.asc", asc([[level] * 6] * 6))
        self.give("house.csv", "Depth,Damage\n0,0\n10,10000\n")
        self.give("town.mif",
                  MIF + "Columns 4\n  Type Char(20)\n  ID Char(20)\n  FFL Float\n  Mult Float\nData\n\nPoint 3.4 3.4\n")
        self.give("town.mid", '"House","1, Main Road",10,1\n')
        self.give("town.dmg", "Read GIS Building == town.mif\nRead Curve House == house.csv\nRead Result % 10 == c.asc\n"
                              "Read Result % 0.2 == a.asc\nRead Result % 1 == b.asc\n")
        self.tool("-damages", "town.dmg")
        row = self.rows("town_Damages.csv", "--rarer", "hold", "--frequent", "zero:50")[0]
        self.assertEqual(row["Property ID"], "1, Main Road")
        self.assertEqual(float(row["AAD Between"]), 0.8 / 100 * 3000 + 9 / 100 * 1250)
        self.assertEqual(float(row["AAD Rarer"]), 0.2 / 100 * 4000)
        self.assertEqual(float(row["AAD More Frequent"]), 40 / 100 * 250)
