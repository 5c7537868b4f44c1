"""Forms of operations: fields, outputs, and the arguments for what was filled in."""
import unittest

import unpacked  # first: it brings the plugin
from gridforge_provider import form as forms
from gridforge_provider import words
from gridforge_provider.package import load_description

DESCRIPTION = load_description(unpacked.PLUGINS / "gridforge_provider/gridforge/gridforge.json")
FORMS = {operation.name: forms.make_form(operation) for operation in DESCRIPTION.operations}


def line(name, more=(), **values):
    """The command line of an operation, with all other fields as they are at first."""
    form = FORMS[name]
    filled = {field.name: field.default for field in form.fields}
    return " ".join(forms.arguments(form, {**filled, **values}, list(more)))


def fields(name):
    return {field.name: field for field in FORMS[name].fields}


class FieldsTest(unittest.TestCase):
    def test_each_flag_is_in_its_form(self):
        left_out = {"-out", "-asc", "-flt"}  # the names of the outputs say them
        for name, form in FORMS.items():
            shown = {field.flag.flag for field in form.fields if field.flag} | {choice for field in form.fields if not field.flag
                                                                                for choice in field.choices}
            operation = form.operation
            asking = [flag.flag for flag in operation.flags]
            if len(asking) == 1 and operation.flags[0].kind == "switch":
                asking = []  # it is always given
            wanted = set(asking) | {flag.flag for flag in operation.options}
            self.assertEqual(wanted - shown - left_out, set(), name)
            self.assertEqual(len({field.name for field in form.fields}), len(form.fields), name)

    def test_inputs_by_their_number(self):
        kinds = {name: [(f.name, f.kind, f.optional) for f in form.fields if f.name.startswith("INPUT")]
                 for name, form in FORMS.items()}
        self.assertEqual(kinds["max"], [("INPUTS", "grids", False)])
        self.assertEqual(kinds["dif"], [("INPUT", "grid", False), ("INPUT_2", "grid", False)])
        self.assertEqual(kinds["cd"], [("INPUT", "grid", False), ("INPUT_2", "grid", True)])
        self.assertEqual(kinds["fe"], [("INPUT", "grid", False)])
        self.assertEqual(kinds["xyz"], [("INPUT", "file", False)])
        self.assertEqual(kinds["remap"], [("INPUTS", "grids", True)])
        self.assertEqual(kinds["damages"], [])
        self.assertEqual(fields("stat")["INPUTS"].least, 2)

    def test_numbers_have_their_defaults_and_units(self):
        spacing = fields("lp")["LPMD"]
        self.assertEqual((spacing.kind, spacing.default, spacing.label), ("number", 100.0, "Distance between points (map units)"))
        factor = fields("resize")["RESIZE"]
        self.assertEqual((factor.kind, factor.default, factor.optional), ("integer", None, False))

    def test_a_number_that_does_more_than_set_a_value_has_no_default(self):
        points = fields("remap")["IDW_NPT"]
        self.assertIsNone(points.default)
        self.assertIn("12 without it", points.help)

    def test_what_must_be_given_comes_first(self):
        for name, form in FORMS.items():
            optional = [field.optional for field in form.fields]
            self.assertEqual(optional, sorted(optional), name)


    def test_one_of_several_switches(self):
        choice = fields("max")["OPERATION"]
        self.assertEqual((choice.label, choice.labels), ("Keep", ("Highest value", "Lowest value")))


class ArgumentsTest(unittest.TestCase):
    def test_inputs_stand_last_in_their_order(self):
        self.assertEqual(line("max", ["-out", "m.asc"], INPUTS=["b.asc", "a.asc"]), "-b -max -out m.asc b.asc a.asc")
        self.assertEqual(line("dif", INPUT="a.asc", INPUT_2="b.asc"), "-b -dif a.asc b.asc")

    def test_one_of_several_flags(self):
        self.assertEqual(line("max", INPUTS=["a.asc"], OPERATION="-min"), "-b -min a.asc")

    def test_numbers_are_glued_to_their_flags(self):
        self.assertEqual(line("cd", CD=0.25, INPUT="a.asc"), "-b -cd0.25 a.asc")
        self.assertEqual(line("resize", RESIZE=4, INPUT="a.asc"), "-b -resize4 a.asc")

    def test_numbers_as_a_person_would_type_them(self):
        for value, text in ((2.0, "2"), (-3, "-3"), (0.1, "0.1"), (1e-7, "0.0000001"), (123456789.5, "123456789.5"),
                            (1e15, "1000000000000000")):
            self.assertEqual(forms.number_text(value), text)
            self.assertEqual(float(forms.number_text(value)), value)

    def test_defaults_are_left_out(self):
        self.assertEqual(line("lp", INPUT="a.asc", LP="l.mif"), "-b -lp l.mif a.asc")
        self.assertEqual(line("lp", INPUT="a.asc", LP="l.mif", LPMD=20.0, CHECK=True), "-b -lp l.mif -check -lpmd20 a.asc")
        self.assertEqual(line("resize", RESIZE=2, INPUT="a.asc", RESIZEMETHOD="-rm_avg"), "-b -resize2 a.asc")
        self.assertEqual(line("resize", RESIZE=2, INPUT="a.asc", RESIZEMETHOD="-rm_min"), "-b -resize2 -rm_min a.asc")
        self.assertEqual(line("nc", INPUTS=["a.asc"], NC_SHUFFLE="0"), "-b -nc -nc_shuffle0 a.asc")

    def test_further_grids_of_a_flag(self):
        self.assertEqual(line("xs", XS="s.mif", MAT=["m.asc", "n.asc"], INPUTS=["a.asc"]),
                         "-b -xs s.mif -mat m.asc -mat n.asc a.asc")

    def test_statistics_add_up(self):
        self.assertEqual(line("stat", INPUTS=["a.asc", "b.asc"], STAT=["Mean", "Max"], STAT_RANK="1, 2"),
                         "-b -statMean -statMax -statRank1 -statRank2 a.asc b.asc")

    def test_the_last_of_the_methods_of_a_remap_is_the_one_that_was_asked_for(self):
        self.assertEqual(line("remap", WL="h.asc", DEM="z.asc", FB=0.2, TIN=True, INPUTS=["v.asc"]),
                         "-b -remap -wl h.asc -dem z.asc -fb0.2 -tin v.asc")

    def test_either_of_two_numbers(self):
        self.assertEqual(line("trans_m", TRANS_C=1.5, INPUT="a.asc"), "-b -trans_c1.5 a.asc")


class MissingTest(unittest.TestCase):
    def missing(self, name, **values):
        return forms.what_is_missing(FORMS[name], line(name, **values).split())

    def test_a_flag_that_needs_another(self):
        self.assertEqual(self.missing("dif", INPUT="a.asc", INPUT_2="b.asc", NOWETDRY=True),
                         "Only cells active in both (-nowetdry) needs -change beside it.")
        self.assertIsNone(self.missing("dif", INPUT="a.asc", INPUT_2="b.asc", NOWETDRY=True, CHANGE=True))

    def test_nothing_is_asked_for(self):
        self.assertEqual(self.missing("trans_m", INPUT="a.asc"), "Nothing is asked for. Give one of -trans_m<m>, -trans_c<c>.")
        self.assertEqual(self.missing("stat", INPUTS=["a.asc", "b.asc"], STAT=[]),
                         "Nothing is asked for. Give one of -stat<All|Mean|Median|Min|Max|Frac|Rank<n>|RankAll>.")
        self.assertIsNone(self.missing("stat", INPUTS=["a.asc", "b.asc"], STAT=[], STAT_RANK="2"))


class OutputsTest(unittest.TestCase):
    def names(self, form, given, by_out, **words_of_run):
        return {output.name: forms.name_in_run(output, given.split(), words_of_run, by_out) for output in FORMS[form].outputs}

    def test_rows_of_one_name_are_one_output(self):
        self.assertEqual([output.name for output in FORMS["max"].outputs], ["OUTPUT", "OUTPUT_SRC", "OUTPUT_SRC_LEGEND"])
        self.assertEqual([output.name for output in FORMS["cp"].outputs], ["OUTPUT", "OUTPUT_CN", "OUTPUT_TABLE"])

    def test_names_in_a_run(self):
        self.assertEqual(self.names("max", "-b -min", True, out="m"),
                         {"OUTPUT": "m", "OUTPUT_SRC": "m_src", "OUTPUT_SRC_LEGEND": "m_src_legend.csv"})
        self.assertEqual(self.names("max", "-b -max -src", True, out="m"),
                         {"OUTPUT": "m", "OUTPUT_SRC": "", "OUTPUT_SRC_LEGEND": ""})
        self.assertEqual(self.names("count", "-b -count", False, first="a"), {"OUTPUT": "a_count.txt"})
        self.assertEqual(self.names("remap", "-b -remap", False, levels="h"),
                         {"OUTPUT_REMAP_H": "h_remap_h", "OUTPUT_REMAP_D": "h_remap_d", "OUTPUT_H_IDW": ""})

    def test_where_files_go(self):
        to_folder = {name for name, form in FORMS.items() if form.to_folder}
        self.assertEqual(to_folder, {"conv", "stat", "trim", "lp", "brkline", "na", "xs", "nbc", "rf", "remap"})
        self.assertEqual({name for name, form in FORMS.items() if form.writes_beside_inputs}, {"nbc", "rf"})


class WordsTest(unittest.TestCase):
    """The words that the description does not have fit what it has."""

    def test_each_operation_is_in_one_group(self):
        names = [name for group in words.GROUPS.values() for name in group]
        self.assertEqual(sorted(names), sorted(FORMS))

    def test_each_output_has_words_and_no_words_are_left(self):
        wanted = {(name, forms.suffix_of(output.rules[0], form.to_folder))
                  for name, form in FORMS.items() for output in form.outputs}
        self.assertEqual(set(words.OUTPUT_WORDS), wanted)

    def test_labels_are_of_flags_that_exist(self):
        self.assertEqual(set(words.FLAG_LABELS) - set(DESCRIPTION.flags), set())
        groups = {flag.group for flag in DESCRIPTION.flags.values() if flag.group}
        self.assertEqual(set(words.GROUP_LABELS), groups)


if __name__ == "__main__":
    unittest.main()
