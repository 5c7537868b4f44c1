"""What the tests of the plugin do where there is no QGIS. Nothing here needs it."""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
SKIPPED = "QGIS is not installed"  # ctest skips a test that prints this, so no failure here may show it


class WithoutQgisTest(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.broken = Path(scratch.name, "qgis")
        self.broken.mkdir()
        (self.broken / "__init__.py").write_text("raise ImportError('broken')\n")

    def ended(self, program, **environment):
        """Status and output of a test whose Python finds a QGIS that cannot be imported."""
        variables = {name: value for name, value in os.environ.items() if name != "GRIDFORGE_NEEDS_QGIS"}
        run = subprocess.run([sys.executable, "-B", "-c", program], cwd=HERE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             env={**variables, "PYTHONPATH": str(self.broken.parent), **environment}, encoding="utf-8",
                             check=False, timeout=60)
        return run.returncode, run.stdout.replace(SKIPPED, "skipped")

    def test_a_test_is_skipped(self):
        self.assertEqual(self.ended("import with_qgis"), (0, "skipped\n"))
        self.assertTrue(f'SKIP_REGULAR_EXPRESSION "{SKIPPED}"' in (HERE.parent / "CMakeLists.txt").read_text(encoding="utf-8"))

    def test_or_fails_where_it_is_needed(self):
        self.assertEqual(self.ended("import with_qgis", GRIDFORGE_NEEDS_QGIS="1"),
                         (1, "GRIDFORGE_NEEDS_QGIS is set, and there is no Python that can import qgis.core\n"))

    def test_so_it_is_without_qgis_process(self):
        program = ("import subprocess, shutil, types; subprocess.run = lambda *a, **k: types.SimpleNamespace(returncode=0); "
                   "import with_qgis; shutil.which = lambda name: None; with_qgis.qgis_process()")
        self.assertEqual(self.ended(program), (0, "skipped\n"))
        self.assertEqual(self.ended(program, GRIDFORGE_NEEDS_QGIS="1"),
                         (1, "GRIDFORGE_NEEDS_QGIS is set, and there is no qgis_process\n"))

    def test_ci_needs_it(self):
        self.assertIn("\nexport GRIDFORGE_NEEDS_QGIS=1 ", (HERE.parents[1] / ".ci/run").read_text(encoding="utf-8"))


if __name__ == "__main__":
    unittest.main()
