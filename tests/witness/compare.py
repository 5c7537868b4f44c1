"""Compares two runs of the same input."""
import os
import re
import shutil
import stat
import subprocess
import tempfile

from inputs import entries

# Bytes that may differ, by extension of the file. Nothing else is set aside.
SET_ASIDE = {".dbf": (1, 4, b"\x03")}  # the day of writing: the two runs may lie on both sides of midnight

# Two runs of one executable differ by up to 4 %, 500 KB: what lies where changes from run to run. Besides, each thread has
# some megabytes of buffers, whatever the size of the grids, and a setting may ask for more threads than there are processors.
MEMORY_SHARE = 0.10
MEMORY_KB = 8192
MEMORY_KB_A_THREAD = 3072
SHOWN = 160
HDF5_FIRST = b"\x89HDF\r\n\x1a\n"


class Outcome:
    """How a run ended: `end` is that of the runner, `folder` holds what the run left."""

    def __init__(self, end, peak_kb, processor_ms, console, error, folder):
        self.end = end
        self.peak_kb = peak_kb
        self.processor_ms = processor_ms
        self.console = console
        self.error = error
        self.folder = folder


class Difference:
    """`kind` is the same for differences of one cause, as far as can be seen; `detail` is the place."""

    def __init__(self, kind, detail, subject=None):
        self.kind = kind
        self.detail = detail
        self.subject = subject  # of a file: what about it differs, and its name


def listing(folder):
    """Names below a folder with their status."""
    found = {}

    def walk(below):
        for entry in entries(os.path.join(folder, below)):
            name = os.path.join(below, entry.name)
            found[name] = entry.stat(follow_symlinks=False)
            if entry.is_dir(follow_symlinks=False):
                walk(name)

    walk("")
    return found


def read(path):
    """The bytes of a file."""
    with open(path, "rb") as source:
        return source.read()


def read_if_allowed(path):
    """The bytes of a file; None where its permissions forbid to read it."""
    try:
        return read(path)
    except PermissionError:
        return None


def without_set_aside(name, data):
    """The bytes that must be equal."""
    start, end, first = SET_ASIDE.get(extension(name), (0, 0, b""))
    return data[:start] + b"\0" * (end - start) + data[end:] if start and data.startswith(first) and len(data) >= end else data


def extension(name):
    """What follows the last point of a name, with it, in small letters: also of a name that has nothing before it."""
    _, point, letters = os.path.basename(name).rpartition(".")
    return (point + letters).lower() if point else ""


def shown(data):
    """A piece of a text or of bytes in a line."""
    return repr(data[:SHOWN])[1:]


def generic(text):
    """A text without its numbers."""
    return re.sub(r"\d+", "#", text)[:100]


def first_difference(a, b):
    """The first position at which two texts of bytes differ."""
    size = min(len(a), len(b))
    if a[:size] == b[:size]:
        return size
    low, high = 0, size
    while high - low > 1:
        middle = (low + high) // 2
        if a[low:middle] == b[low:middle]:
            low = middle
        else:
            high = middle
    return low


def compare_console(title, a, b, again):
    """The first line that differs, apart from lines in which `again` differs from `a` too."""
    if a == b:
        return []
    one, two, three = (text.split(b"\n") for text in (a, b, again))
    # A missing line and those after it cannot be matched with others.
    size = min(len(one), len(two)) if len(one) == len(three) else min(len(one), len(two), len(three))
    at = next((i for i in range(size) if one[i] != two[i] and one[i] == three[i]), size)
    if at == size and (len(one) == len(two) or len(one) != len(three)):
        return []
    x, y = (shown(lines[at]) if at < len(lines) else "<end>" for lines in (one, two))
    return [Difference("%s: %s | %s" % (title, generic(x), generic(y)), "line %d: %s | %s" % (at + 1, x, y))]


def netcdf_content(path):
    """What the NetCDF library reads: how the file is laid out, and every bit of the values. None where it reads nothing.

    The same cells have other bytes where another library, or another release of it, deflates them.
    """
    if not shutil.which("ncdump") or not shutil.which("nccopy"):
        return None
    with tempfile.TemporaryDirectory(prefix="gridforge-witness-") as folder:
        plain = os.path.join(folder, "plain.nc")
        shown = subprocess.run(["ncdump", "-h", "-s", path], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        copied = subprocess.run(["nccopy", "-k", "classic", path, plain], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                check=False)
        return None if shown.returncode or copied.returncode else shown.stdout + read(plain)


def same_netcdf(a, b, path_a, path_b):
    """Whether both are NetCDF files of the same content, whatever their names: damage changes names too."""
    if not (a.startswith(HDF5_FIRST) and b.startswith(HDF5_FIRST)):
        return False
    content = netcdf_content(path_a)
    return content is not None and content == netcdf_content(path_b)


def compare_bytes(name, path_a, path_b):
    """The first byte that differs; NetCDF files may differ in their bytes if the content is the same."""
    a, b = read_if_allowed(path_a), read_if_allowed(path_b)
    if a is None or b is None:
        return [] if a is b else [Difference("readable", name, ("bytes", name))]
    if a == b or without_set_aside(name, a) == without_set_aside(name, b) or same_netcdf(a, b, path_a, path_b):
        return []
    at = first_difference(without_set_aside(name, a), without_set_aside(name, b))
    detail = "%s: %d and %d bytes, first at %d: %s | %s" % (name, len(a), len(b), at, shown(a[at:at + 24]), shown(b[at:at + 24]))
    return [Difference("bytes of %s" % (extension(name) or "a file"), detail, ("bytes", name))]


def first_names(found):
    """The first name of the file that each name stands for."""
    names = {}
    return {name: names.setdefault((found[name].st_dev, found[name].st_ino), name) for name in sorted(found)}


def compare_files(folder_a, folder_b):
    """Names, kinds, permissions, bytes, and which names are of one file."""
    a, b = listing(folder_a), listing(folder_b)
    first_a, first_b = first_names(a), first_names(b)
    found = [Difference("only %s leaves %s" % (who, extension(name) or "a file"), name, ("name", name))
             for who, names in (("the reference", a.keys() - b.keys()), ("the new one", b.keys() - a.keys()))
             for name in sorted(names)]
    for name in sorted(a.keys() & b.keys()):
        if a[name].st_mode != b[name].st_mode:
            found.append(Difference("mode", "%s: %s | %s" % (name, stat.filemode(a[name].st_mode), stat.filemode(b[name].st_mode)),
                                    ("mode", name)))
        elif stat.S_ISREG(a[name].st_mode):
            found += compare_bytes(name, os.path.join(folder_a, name), os.path.join(folder_b, name))
        elif stat.S_ISLNK(a[name].st_mode) and os.readlink(os.path.join(folder_a, name)) != os.readlink(os.path.join(folder_b, name)):
            found.append(Difference("link", name, ("link", name)))
        if first_a[name] != first_b[name]:
            found.append(Difference("hard link", "%s: %s | %s" % (name, first_a[name], first_b[name]), ("hard link", name)))
    return found


def more_memory(a, b, threads=0):
    """Whether the second, for which so many threads were asked, needs clearly more memory than the first."""
    return b.peak_kb > a.peak_kb * (1 + MEMORY_SHARE) + max(MEMORY_KB, threads * MEMORY_KB_A_THREAD)


def compare(a, b, again=None):
    """All differences between the run of the reference and that of the new executable, except memory.

    Where `again`, a second run of the reference, differs from the first, nothing counts as a difference.
    """
    again = again or a
    if "overtime" in (a.end, b.end, again.end):
        # Where a run was stopped is chance; what it said until then is not.
        size = min(len(a.console), len(b.console), len(again.console))
        return compare_console("console", a.console[:size], b.console[:size], again.console[:size])
    found = []
    if a.end != b.end and a.end == again.end:
        found.append(Difference("end: %s | %s" % (a.end, b.end), shown(b.error)))
    found += compare_console("console", a.console, b.console, again.console)
    found += compare_console("standard error", a.error, b.error, again.error)
    unsteady = {one.subject for one in compare_files(a.folder, again.folder)} if again is not a else set()
    return found + [one for one in compare_files(a.folder, b.folder) if one.subject not in unsteady]
