"""Files to their places: whole, all or none."""
import errno
import os
import threading
import unittest
from pathlib import Path
from unittest import mock

from gridforge import moving
from gridforge.moving import Exists, Move, move_all, move_file
from tests.support import ScratchTest


class MoveTest(ScratchTest):
    """By each of the ways that systems have."""
    ways = [(), ("_rename_if_free",), ("_rename_if_free", "_link_if_free")]

    def each_way(self):
        for missing in self.ways:
            patches = [mock.patch.object(moving, name, return_value=False) for name in missing]
            for patch in patches:
                patch.start()
            try:
                with self.subTest(without=missing):
                    yield
            finally:
                for patch in patches:
                    patch.stop()

    def test_to_a_free_name(self):
        for _ in self.each_way():
            move_file(self.give("new", "cells"), self.folder / "out", overwrite=False)
            self.assertEqual(self.files(), ["out"])
            self.assertEqual(Path("out").read_text(), "cells")
            os.unlink("out")

    def test_never_over_a_file(self):
        for _ in self.each_way():
            self.give("out", "mine")
            with self.assertRaises(Exists) as raised:
                move_file(self.give("new", "cells"), self.folder / "out", overwrite=False)
            self.assertEqual(raised.exception.path, self.folder / "out")
            self.assertEqual((Path("new").read_text(), Path("out").read_text()), ("cells", "mine"))

    def test_nor_over_a_link_that_leads_nowhere(self):
        for _ in self.each_way():
            self.give("new", "cells")
            if not os.path.lexists("out"):
                os.symlink("none", "out")
            with self.assertRaises(Exists):
                move_file(self.folder / "new", self.folder / "out", overwrite=False)

    def test_over_a_file_if_wanted(self):
        self.give("out", "old")
        move_file(self.give("new", "cells"), self.folder / "out", overwrite=True)
        self.assertEqual((self.files(), Path("out").read_text()), (["out"], "cells"))

    def test_files_that_only_the_old_set_has(self):
        for name in ("o.flt", "o.hdr", "o.prj"):
            self.give(name, "old")
        moves = [Move(self.give("new" + ending, "new"), self.folder / ("o" + ending)) for ending in (".flt", ".hdr")]
        with mock.patch.object(moving, "move_file", side_effect=OSError(errno.ENOSPC, "No space left on device")):
            with self.assertRaises(OSError):
                move_all(moves, overwrite=True, gone=[self.folder / "o.prj"])
        self.assertEqual(self.files(), ["new.flt", "new.hdr", "o.flt", "o.hdr", "o.prj"])
        move_all(moves, overwrite=True, gone=[self.folder / "o.prj", self.folder / "none"])
        self.assertEqual(self.files(), ["o.flt", "o.hdr"])

    def test_one_of_many_wins(self):
        for _ in self.each_way():
            if isinstance(moving._link_if_free, mock.Mock):
                continue  # a system without either call cannot promise this
            won = []

            def one(number):
                source = self.give(f"new{number}", str(number))
                try:
                    move_file(source, self.folder / "out", overwrite=False)
                    won.append(str(number))
                except Exists:
                    source.unlink()
            threads = [threading.Thread(target=one, args=(number,)) for number in range(8)]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertEqual((self.files(), [Path("out").read_text()]), (["out"], won))
            os.unlink("out")


class MoveAllTest(ScratchTest):
    def moves(self, *names):
        return [Move(self.give("new/" + name, "new " + name), self.folder / name) for name in names]

    def test_files_and_folders_are_flushed_first(self):
        flushed = []
        self.give("out/mine", "")
        moves = [Move(self.give("new/a", ""), self.folder / "out/a")]
        real = moving.flush

        def note(path):
            flushed.append((Path(path).name, (self.folder / "out/a").exists()))
            real(path)
        with mock.patch.object(moving, "flush", note):
            move_all(moves, overwrite=False)
        self.assertEqual(flushed, [("a", False), ("out", True)])

    def test_all_or_none(self):
        moves = self.moves("a", "b", "c")
        self.give("b", "mine")
        with self.assertRaises(Exists):
            move_all(moves, overwrite=False)
        self.assertEqual(self.files(), ["b", "new/a", "new/b", "new/c"])

    def elsewhere(self, name, text):
        """A file on another file system."""
        folder = Path("/dev/shm")
        if not folder.is_dir() or os.stat(folder).st_dev == os.stat(self.folder).st_dev:
            self.skipTest("needs a second file system, as /dev/shm")
        source = folder / f"gridforge-test-{os.getpid()}-{name}"
        self.addCleanup(source.unlink, missing_ok=True)
        source.write_text(text)
        return source

    def test_across_file_systems(self):
        for overwrite in (False, True):
            moves = [Move(self.elsewhere(name, "new " + name), self.folder / name) for name in ("m.flt", "m.hdr", "a.asc")]
            move_all(moves, overwrite)
            self.assertEqual(self.files(), ["a.asc", "m.flt", "m.hdr"])
        self.give("m.flt", "mine")
        for name in ("a.asc", "m.hdr"):
            os.unlink(name)
        with mock.patch.object(moving, "_first_there", return_value=None), self.assertRaises(Exists):
            move_all(moves[::-1], overwrite=False)
        self.assertEqual((self.files(), Path("m.flt").read_text()), (["m.flt"], "mine"))

    def test_old_files_stay_until_all_copies_are_there(self):
        self.give("m.flt", "old")
        self.give("m.hdr", "old")
        moves = [Move(self.elsewhere(name, "new"), self.folder / name) for name in ("m.flt", "m.hdr")]
        real = moving.shutil.copy2
        copies = []

        def copy(source, target):
            copies.append(self.files())
            if len(copies) == 2:
                raise OSError(errno.ENOSPC, "No space left on device")
            return real(source, target)
        with mock.patch.object(moving.shutil, "copy2", copy), self.assertRaises(OSError):
            move_all(moves, overwrite=True)
        self.assertEqual([[name for name in names if not name.startswith(".")] for names in copies], [["m.flt", "m.hdr"]] * 2)
        self.assertEqual((self.files(), Path("m.flt").read_text()), (["m.flt", "m.hdr"], "old"))

    def fails_at(self, number):
        real = moving.move_file
        count = []

        def fail(*arguments):
            count.append(1)
            if len(count) == number:
                raise OSError(errno.ENOSPC, "No space left on device")
            real(*arguments)
        return mock.patch.object(moving, "move_file", fail)

    def test_what_was_moved_is_taken_back(self):
        with self.fails_at(3), self.assertRaises(OSError):
            move_all(self.moves("a", "b", "c"), overwrite=False)
        self.assertEqual(self.files(), ["new/a", "new/b", "new/c"])

    def test_and_what_was_replaced_comes_back(self):
        for name in ("a.asc", "m.flt", "m.hdr"):
            self.give(name, "old " + name)
        for number in (1, 2, 3):
            with self.fails_at(number), self.assertRaises(OSError):
                move_all(self.moves("a.asc", "m.flt", "m.hdr"), overwrite=True)
            self.assertEqual(self.files(), ["a.asc", "m.flt", "m.hdr", "new/a.asc", "new/m.flt", "new/m.hdr"])
            for name in ("a.asc", "m.flt", "m.hdr"):
                self.assertEqual(Path(name).read_text(), "old " + name)

    def test_no_old_header_stands_beside_new_cells(self):
        for name in ("m.flt", "m.hdr"):
            self.give(name, "old " + name)
        seen = []
        real = moving.move_file

        def look(*arguments):
            seen.append({name: Path(name).read_text() for name in ("m.flt", "m.hdr") if os.path.exists(name)})
            real(*arguments)
        with mock.patch.object(moving, "move_file", look):
            move_all(self.moves("m.flt", "m.hdr"), overwrite=True)
        self.assertEqual(seen, [{}, {"m.flt": "new m.flt"}])
        self.assertEqual(self.files(), ["m.flt", "m.hdr"])

    def test_a_single_file_is_replaced_at_once(self):
        self.give("a.asc", "old")
        seen = []
        real = os.replace

        def look(*arguments):
            seen.append(Path("a.asc").read_text())
            real(*arguments)
            seen.append(Path("a.asc").read_text())
        with mock.patch.object(moving.os, "replace", look):
            move_all(self.moves("a.asc"), overwrite=True)
        self.assertEqual(seen, ["old", "new a.asc"])
        self.assertEqual(self.files(), ["a.asc"])


if __name__ == "__main__":
    unittest.main()
