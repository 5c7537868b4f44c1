#!/usr/bin/env python3
"""Makes the plugin for QGIS as the zip that its plugin manager installs. It stands alone: it holds the Python package of the
tool, the description of the command line and the pages of the operations.

usage: make_zip.py PACKAGE DESCRIPTION PAGES ZIP
    PACKAGE      the folder of the Python package
    DESCRIPTION  gridforge.json of the build
    PAGES        the folder with the pages of the operations
"""
import json
import re
import sys
import zipfile
from pathlib import Path

PLUGIN = Path(__file__).resolve().parent / "gridforge_provider"
A_TIME = (2000, 1, 1, 0, 0, 0)  # equal contents make equal files


def contents(package: Path, description: Path, pages: Path) -> dict[str, bytes]:
    """The files of the zip by their names in the folder of the plugin."""
    files = {file.relative_to(PLUGIN).as_posix(): file.read_bytes() for file in sources(PLUGIN)}
    files.update({f"gridforge/{file.relative_to(package).as_posix()}": file.read_bytes() for file in sources(package)})
    files["gridforge/gridforge.json"] = description.read_bytes()
    files.update({f"pages/{file.name}": file.read_bytes() for file in pages.glob("*.md") if file.name != "README.md"})
    version = json.loads(description.read_text(encoding="utf-8"))["version"]
    metadata = files["metadata.txt"].decode("utf-8")
    files["metadata.txt"] = re.sub(r"^version=.*$", f"version={version}", metadata, flags=re.M).encode("utf-8")
    return files


def sources(folder: Path) -> list[Path]:
    return [file for file in folder.rglob("*") if file.is_file() and "__pycache__" not in file.parts]


def main(arguments: list[str]) -> int:
    if len(arguments) != 4:
        print(__doc__, file=sys.stderr)
        return 2
    package, description, pages, target = map(Path, arguments)
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in sorted(contents(package, description, pages).items()):
            archive.writestr(zipfile.ZipInfo(f"{PLUGIN.name}/{name}", A_TIME), content, zipfile.ZIP_DEFLATED)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
