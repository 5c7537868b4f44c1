"""Roles of arguments, and how names are handed to the tool."""
import os
import unittest

import gridforge
from gridforge.arguments import hand_over, operation_of, relative_name, scan
from gridforge.families import Look
from tests.support import ScratchTest


class ArgumentsTest(ScratchTest):
    def setUp(self):
        super().setUp()
        self.description = gridforge.load_description()

    def scan(self, *arguments):
        return scan(arguments, self.description, self.folder)

    def roles(self, *arguments):
        return [(a.role, a.flag.flag if a.flag else None) for a in self.scan(*arguments)]

    def handed(self, *arguments):
        return [argument.text for argument in hand_over(self.scan(*arguments), self.folder)]

    def test_roles(self):
        self.assertEqual(self.roles("-max", "a.asc", "-out", "-max", "-decimal2"),
                         [("flag", "-max"), ("input", None), ("flag", "-out"), ("value", "-out"), ("flag", "-decimal")])

    def test_letters_after_a_flag_and_case_do_not_count(self):
        self.assertEqual(self.roles("-MAXIMUM", "-nc_part1", "-nc", "-cd0.5", "-lpmd5", "-statMean"),
                         [("flag", "-max"), ("flag", "-nc_part"), ("flag", "-nc"), ("flag", "-cd"), ("flag", "-lpmd"),
                          ("flag", "-stat")])

    def test_two_hyphens_where_the_tool_takes_them(self):
        self.assertEqual(self.roles("--change", "--check"), [("flag", "-change"), ("flag", "-check")])

    def test_a_name_after_the_inputs_is_that_of_the_output(self):
        for arguments, roles in ((["-dif", "a", "b", "d"], ["flag", "input", "input", "output"]),
                                 (["a", "-multiply", "b", "-asc", "d"], ["input", "flag", "input", "flag", "output"]),
                                 (["-cd1", "a", "b"], ["flag", "input", "input"]),
                                 (["-max", "a", "b", "d"], ["flag", "input", "input", "input"])):
            self.assertEqual([argument.role for argument in self.scan(*arguments)], roles, arguments)
        self.assertEqual(self.handed("-b", "-dif", "a", "b", self.folder / "d"), ["-b", "-dif", "a", "b", "d"])
        self.give("x1", "")
        self.give("x2", "")
        self.assertEqual(self.roles("-dif", "a", "x?")[1:], [("input", None), ("input", None)])
        self.assertEqual(self.roles("-dif", "x?", "d")[1:], [("input", None), ("output", None)])

    def test_unknown_flag(self):
        self.assertEqual(self.roles("-quick"), [("flag", None)])

    def test_slash_before_a_flag(self):
        self.assertEqual(self.roles("/max", "/tmp/max", "/quick.asc"), [("flag", "-max"), ("input", None), ("input", None)])

    def test_byte_of_a_dash(self):
        self.assertEqual(self.roles(b"\x96max"), [("flag", "-max")])
        self.give(os.fsdecode(b"\x96max"), "")
        self.assertEqual(self.roles(b"\x96max"), [("input", None)])
        self.assertEqual(self.handed("-b", "-max", b"\x96max"), ["-b", "-max", "./\udc96max"])

    def test_operation(self):
        for arguments, name in ((["-min"], "max"), (["-trans_c2"], "trans_m"), (["-rf", "x"], "rf"), (["-b", "-change"], None),
                                (["-out", "-max"], None)):
            operation = operation_of(self.scan(*arguments), self.description)
            self.assertEqual(operation.name if operation else None, name, arguments)

    def test_batch_mode_is_asked_for_once(self):
        self.assertEqual(self.handed("-max", "a"), ["-b", "-max", "a"])
        self.assertEqual(self.handed("-max", "-B", "a"), ["-max", "-B", "a"])

    def test_names_from_the_root(self):
        folder = self.folder
        self.assertEqual(self.handed("-b", "-max", folder / "x/a b.asc", "-out", folder.parent / "out"),
                         ["-b", "-max", "x/a b.asc", "-out", "../out"])
        self.assertEqual(relative_name("/x*.asc", folder), "../" * (len(folder.parts) - 1) + "x*.asc")

    def test_a_name_that_goes_back_out_of_a_link(self):
        (self.folder / "deep/er").mkdir(parents=True)
        os.symlink("deep/er", self.folder / "link")
        self.assertEqual(relative_name(str(self.folder / "link/../a.asc"), self.folder), "deep/a.asc")

    def test_leading_blank(self):
        self.assertEqual(self.handed("-b", " a.asc", "\tb"), ["-b", "./ a.asc", "./\tb"])

    def refused(self, *arguments):
        with self.assertRaises(gridforge.WrongUse) as raised:
            self.handed(*arguments)
        return str(raised.exception)

    def test_names_that_the_tool_cannot_take(self):
        self.assertEqual(self.refused("-max", "a.asc "), "The tool takes no name that ends with a blank: 'a.asc '")
        self.assertEqual(self.refused("-max", "a\nb"), "The tool takes no name with the end of a line in it: 'a\\nb'")
        self.assertEqual(self.handed("-b", "a" * 1000), ["-b", "a" * 1000])
        self.assertEqual(self.refused("-max", "\u00e4" * 501),
                         "The tool takes 1000 bytes of a name, and this one is longer: " + "\u00e4" * 501)


class LookTest(ScratchTest):
    def test_wildcards_as_the_tool_reads_them(self):
        names = ["a1.asc", "a2.asc", "a[1].asc", ".a3.asc", "B1.asc", os.fsdecode(b"a\xff.asc")]
        for name in names:
            self.give("d/" + name, "")
        look = Look(self.folder)
        self.assertEqual(look.matching("d/a?.asc"), ["d/a1.asc", "d/a2.asc", "d/" + os.fsdecode(b"a\xff.asc")])
        self.assertEqual(look.matching("d\\a[1].asc"), ["d/a[1].asc"])
        self.assertEqual(look.matching("d/*3*"), ["d/.a3.asc"])
        self.assertEqual(look.matching("d/b1.asc"), [])
        self.assertEqual(look.matching("none/*"), [])
        self.assertEqual(look.matching("d/"), [])

    def test_capitals(self):
        self.give("Pts.SHP", "")
        self.give("two.mif", "")
        self.give("TWO.mif", "")
        look = Look(self.folder)
        self.assertEqual(look.in_any_case("pts.shp"), "Pts.SHP")
        self.assertEqual(look.in_any_case("two.mif"), "two.mif")
        self.assertIsNone(look.in_any_case("Two.mif"))

    def test_companions(self):
        for name in ("p.shp", "p.SHX", "p.dbf", "P.prj", "p.mid", "g.flt", "g.hdr"):
            self.give(name, "")
        look = Look(self.folder)
        self.assertEqual(list(look.companions("p.shp")), ["p.SHX", "p.dbf", "P.prj"])
        self.assertEqual(list(look.companions("g.flt")), ["g.hdr"])


if __name__ == "__main__":
    unittest.main()
