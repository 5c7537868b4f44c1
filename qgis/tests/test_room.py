"""The folder of a run: inputs into it, outputs out of it."""
import os
import tempfile
import unittest
from pathlib import Path

import unpacked  # noqa: F401  first: it brings the plugin
from gridforge_provider import room as rooms
from gridforge_provider.room import Room


class RoomTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = Path(scratch.name)
        self.room = Room(self.folder / "results")
        self.addCleanup(self.room.close)

    def write(self, name, text="x"):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        return path

    def in_room(self):
        return sorted(path.relative_to(self.room.folder).as_posix() for path in self.room.listing())

    def test_the_folder_of_the_outputs_is_made_and_nothing_is_left_in_it(self):
        self.assertEqual(self.room.folder.parent, self.folder / "results")
        self.room.close()
        self.assertEqual(list((self.folder / "results").iterdir()), [])

    def test_what_belongs_to_a_file_comes_with_it_whatever_its_case(self):
        self.write("in/a.HDR")
        self.write("in/A.prj")
        self.write("in/ab.prj")
        self.assertEqual(self.room.give(self.write("in/a.flt")), "a.flt")
        self.assertEqual(self.in_room(), ["a.HDR", "a.flt", "a.prj"])

    def test_only_cells_are_links(self):
        self.write("a.prj", "old")
        self.room.give(self.write("a.asc", "cells"))
        self.assertTrue((self.room.folder / "a.asc").is_symlink())
        (self.room.folder / "a.prj").write_text("new")
        self.assertEqual((self.folder / "a.prj").read_text(), "old")

    def test_inputs_of_one_name_stand_apart(self):
        names = [self.room.give(self.write(f"{folder}/a.asc", folder)) for folder in ("x", "y", "z/y")]
        self.assertEqual(names, ["a.asc", "y/a.asc", "2/a.asc"])
        self.assertEqual([(self.room.folder / name).read_text() for name in names], ["x", "y", "z/y"])

    def test_so_do_grids_of_which_one_could_become_the_other(self):
        self.assertEqual([self.room.give(self.write(f"in/{name}")) for name in ("a.asc", "A.flt")], ["a.asc", "in/A.flt"])
        self.assertEqual(self.room.give(self.write("in/a.mif")), "a.mif")

    def test_a_name_that_looks_like_a_flag(self):
        self.assertEqual(self.room.give(self.write("-a.asc")), "./-a.asc")
        self.assertIn("-a.asc", self.in_room())

    def test_a_projection_only_where_there_is_none(self):
        self.write("a.prj", "its own")
        for name in ("a.asc", "b.asc"):
            self.room.project(self.room.give(self.write(name)), "that of the layer")
        self.assertEqual((self.room.folder / "a.prj").read_text(), "its own")
        self.assertEqual((self.room.folder / "b.prj").read_text(), "that of the layer")

    def test_what_a_run_makes_or_rewrites(self):
        self.room.give(self.write("l.mif"))
        self.room.give(self.write("m.mif"))
        before = self.room.listing()
        (self.room.folder / "l.mif").write_text("another")
        (self.room.folder / "new.csv").write_text("")
        (self.room.folder / "a.asc.aux.xml").write_text("")
        changed = rooms.changed(before, self.room.listing())
        self.assertEqual([path.name for path in changed], ["l.mif", "new.csv"])

    def test_files_of_an_output(self):
        files = [Path(name) for name in ("r.mif", "r.mid", "r_Cn.mif", "r_P.shp", "r_P.dbf", "R_l.shp", "rr.mif")]
        self.assertEqual([file.name for file in rooms.with_stem(files, "r")], ["r.mif", "r.mid", "r_P.shp", "r_P.dbf", "R_l.shp"])

    def test_an_output_takes_the_name_that_was_asked_for(self):
        files = [self.write(f"results/out/{name}", name) for name in ("r_P.shp", "r_P.dbf")]
        rooms.publish(rooms.moves_of(files, "r", self.folder / "new/marks.shp"))
        self.assertEqual(sorted(path.name for path in (self.folder / "new").iterdir()), ["marks_P.dbf", "marks_P.shp"])
        self.assertEqual((self.folder / "new/marks_P.shp").read_text(), "r_P.shp")

    def test_all_files_keep_their_places_in_the_folder(self):
        for name in ("csv/s.csv", "out/a.flt", "b.asc"):
            (self.room.folder / name).parent.mkdir(exist_ok=True)
            (self.room.folder / name).write_text(name)
        target = self.folder / "results"
        self.write("results/b.asc", "old")
        moves = rooms.moves_to_folder(sorted(self.room.listing()), self.room.folder, target)
        rooms.publish(moves)
        self.assertEqual([move.target.relative_to(target).as_posix() for move in moves], ["b.asc", "csv/s.csv", "a.flt"])
        self.assertEqual((target / "b.asc").read_text(), "b.asc")

    def replace(self, *given, old):
        """The files of `results` after outputs called r have gone over old ones."""
        for name in old:
            self.write(f"results/{name}", "old")
        moves = [move for name in given for move in rooms.moves_of([self.write(f"results/out/{name}")], "r",
                                                                   (self.folder / "results" / name).with_stem("m"))]
        rooms.publish(moves)
        return sorted(path.name for path in (self.folder / "results").iterdir() if path.is_file())

    def test_notes_on_a_grid_that_was_there_before_go(self):
        for name in ("m.flt.aux.xml", "m.stx", "n.stx"):
            self.write(f"results/{name}")
        rooms.publish(rooms.moves_of([self.write("results/out/r.flt")], "r", self.folder / "results/m.flt"))
        self.assertEqual(sorted(path.name for path in (self.folder / "results").iterdir() if path.is_file()), ["m.flt", "n.stx"])

    def test_so_do_indexes_of_a_layer(self):
        self.assertEqual(self.replace("r.shp", old=["m.qix", "m.sbn", "m.sbx", "n.qix"]), ["m.shp", "n.qix"])

    def test_what_belonged_to_a_grid_that_is_replaced_goes_with_it(self):
        self.assertEqual(self.replace("r.flt", "r.hdr", old=["m.flt", "m.hdr", "M.prj", "n.prj"]), ["m.flt", "m.hdr", "n.prj"])

    def test_so_with_layers(self):
        self.assertEqual(self.replace("r.shp", "r.shx", "r.dbf", old=["m.shp", "m.shx", "m.dbf", "m.prj", "m.cpg"]),
                         ["m.dbf", "m.shp", "m.shx"])

    def test_what_also_belongs_to_a_file_that_stays_is_kept(self):
        self.assertEqual(self.replace("r.flt", "r.hdr", old=["m.flt", "m.hdr", "m.prj", "m.asc"]),
                         ["m.asc", "m.flt", "m.hdr", "m.prj"])

    def test_a_projection_that_came_before_its_grid_is_kept(self):
        self.assertEqual(self.replace("r.asc", old=["m.prj"]), ["m.asc", "m.prj"])

    def test_names_are_no_patterns(self):
        self.assertEqual(self.room.give(self.write("a*.asc")), "a_.asc")
        self.assertEqual(self.room.give(self.write("a?.asc")), f"{self.folder.name}/a_.asc")

    def test_a_large_table_is_not_copied(self):
        self.assertTrue((self.room.folder / self.room.give(self.write("cloud.xyz"), is_only_read=True)).is_symlink())
        self.assertFalse((self.room.folder / self.room.give(self.write("bins.csv"))).is_symlink())


if __name__ == "__main__":
    unittest.main()
