"""QGIS without windows, for tests. A test that imports this runs by a Python that has QGIS, or is skipped.

Where the variable GRIDFORGE_NEEDS_QGIS is set, it fails instead.
"""
import os
import shutil
import subprocess
import sys
from typing import NoReturn

SYSTEM_PYTHON = "/usr/bin/python3"  # Debian's QGIS belongs to it


def has_qgis(python: str) -> bool:
    command = [python, "-c", "import qgis.core"]
    return os.path.exists(python) and subprocess.run(command, capture_output=True, check=False).returncode == 0


def leave_out(what: str) -> NoReturn:
    """Ends the test. The words decide: ctest takes those of a skipped test from the output, whatever the status is."""
    if os.environ.get("GRIDFORGE_NEEDS_QGIS"):
        print(f"GRIDFORGE_NEEDS_QGIS is set, and there is no {what}")
        sys.exit(1)
    print("QGIS is not installed")
    sys.exit(0)


def settle_python() -> None:
    """Goes on by the Python that has QGIS; ends the test where none has."""
    if has_qgis(sys.executable):
        return
    if os.path.realpath(sys.executable) != os.path.realpath(SYSTEM_PYTHON) and has_qgis(SYSTEM_PYTHON):
        os.execv(SYSTEM_PYTHON, [SYSTEM_PYTHON, "-B", *sys.argv])
    leave_out("Python that can import qgis.core")


settle_python()
os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")


def qgis_process() -> str:
    """The program itself: the wrapper of Debian 12 adds an option that it does not know."""
    found = shutil.which("qgis_process.bin") or shutil.which("qgis_process")
    if found is None:
        leave_out("qgis_process")
    return found


def environment(home: str) -> dict[str, str]:
    """For a QGIS with settings of its own and the unpacked plugin. QGIS takes its Python from the path."""
    from unpacked import PLUGINS
    path = os.pathsep.join([os.path.dirname(sys.executable), os.environ["PATH"]])
    return {**os.environ, "PATH": path, "HOME": home, "XDG_RUNTIME_DIR": home, "QGIS_CUSTOM_CONFIG_PATH": home,
            "QGIS_PLUGINPATH": str(PLUGINS), "PYTHONDONTWRITEBYTECODE": "1"}
