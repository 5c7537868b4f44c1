"""The plugin as users get it: the zip, unpacked for this process and found by `import gridforge_provider`."""
import atexit
import os
import shutil
import sys
import tempfile
import zipfile
from pathlib import Path

PLUGINS = Path(tempfile.mkdtemp(prefix="gridforge-qgis-"))
atexit.register(shutil.rmtree, PLUGINS, ignore_errors=True)
with zipfile.ZipFile(os.environ["GRIDFORGE_QGIS_ZIP"]) as archive:
    archive.extractall(PLUGINS)
sys.path.insert(0, str(PLUGINS))
