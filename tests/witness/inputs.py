"""The inputs of runs: recorded tests, sample cases, real data.

An input is a folder of files, the arguments, and standard input. All sources are sorted, so that the number of a run
stands for the same input as long as the sources stay as they are.
"""
import json
import os
import stat

import real_runs

MOST_BYTES = 32 << 20  # of the files of an input; larger ones are left out


class File:
    """A file, folder or link of an input. A file is read when its data is first needed.

    The data of a link is where it leads; that of a "same" is the name of an earlier file, of which it is another name.
    """

    def __init__(self, kind, mode=0o644, path=None, data=None):
        self.kind = kind  # "file", "folder", "link" or "same"
        self.mode = mode
        self.path = path
        self._data = data

    @property
    def data(self):
        if self._data is None:
            try:
                with open(self.path, "rb") as source:
                    self._data = source.read()
            except PermissionError:
                self._data = b""  # the run cannot read it either
        return self._data

    @data.setter
    def data(self, value):
        self._data = value


class Input:
    """All that a run is given. `files` maps names, relative to the folder of the run, to File."""

    def __init__(self, name, files, arguments, stdin=b"", work_folder="", environment=()):
        self.name = name
        self.files = files
        self.arguments = arguments  # bytes; @FOLDER@ stands for the folder of the run, here and in the environment
        self.stdin = stdin
        self.work_folder = work_folder
        self.environment = list(environment)  # bytes, "NAME=value"


FOLDER = b"@FOLDER@"


def entries(folder):
    """The entries of a folder; none if it cannot be read."""
    try:
        with os.scandir(folder) as found:
            return list(found)
    except PermissionError:
        return []


def files_below(folder):
    """Everything below a folder, by relative name; folders come before what is in them."""
    files = {}
    names = {}

    def walk(below):
        for entry in sorted(entries(os.path.join(folder, below)), key=lambda entry: entry.name):
            name = os.path.join(below, entry.name)
            status = entry.stat(follow_symlinks=False)
            mode = stat.S_IMODE(status.st_mode)
            if entry.is_symlink():
                files[name] = File("link", mode, data=os.fsencode(os.readlink(entry.path)))
            elif entry.is_dir(follow_symlinks=False):
                files[name] = File("folder", mode)
                walk(name)
            elif names.setdefault((status.st_dev, status.st_ino), name) != name:
                files[name] = File("same", mode, data=names[status.st_dev, status.st_ino])
            else:
                files[name] = File("file", mode, path=entry.path)

    if os.path.isdir(folder):
        walk("")
    return files


def size_of(folder):
    """Bytes of all files below a folder."""
    return sum(os.lstat(os.path.join(place, name)).st_size for place, _, names in os.walk(folder) for name in names)


def fields_of(path):
    """The fields of a recorded run: pairs of texts and bytes."""
    with open(path, "rb") as source:
        parts = source.read().split(b"\0")
    return [(key.decode(), value) for key, _, value in (part.partition(b"=") for part in parts if part)]


class Recorded:
    """A run that a test, or the witness itself, has recorded."""

    def __init__(self, folder, name):
        self.folder = folder
        self.name = name

    def load(self):
        fields = fields_of(os.path.join(self.folder, "run"))
        one = dict(fields)
        arguments = [value for key, value in fields if key == "argument"]
        environment = [value for key, value in fields if key == "environment"]
        if one["program"] == b"/usr/bin/env":
            start = arguments.index(one["tool"])
            environment += arguments[:start]
            arguments = arguments[start + 1:]
        here = one["folder"]
        if here:
            arguments = [word.replace(here, FOLDER) for word in arguments]
            environment = [word.replace(here, FOLDER) for word in environment]
        return Input(self.name, files_below(os.path.join(self.folder, "given")), arguments, one["input"],
                     os.fsdecode(one["work folder"]), environment)


class Case:
    """A sample case: case.json and the folder given/."""

    def __init__(self, folder, name):
        self.folder = folder
        self.name = name

    def load(self):
        with open(os.path.join(self.folder, "case.json"), encoding="utf-8") as source:
            case = json.load(source)
        files = files_below(os.path.join(self.folder, "given"))
        files = {name: file for name, file in files.items() if os.path.basename(name) != ".keep"}
        return Input(self.name, files, [word.encode("latin-1") for word in case["args"]],
                     "".join(line + "\n" for line in case["stdin"]).encode("latin-1"))


class Real:
    """A whole run on real data."""

    def __init__(self, data, row):
        self.data = data
        self.row = row
        self.name = "real: " + " ".join(row.arguments)

    def load(self):
        files = {os.path.basename(name): File("file", path=os.path.join(self.data, name)) for name in self.row.files}
        for name, text in self.row.texts.items():
            files[name] = File("file", data=text.encode("latin-1"))
        for name in self.row.folders:
            files[name] = File("folder", 0o755)
        return Input(self.name, files, [word.encode() for word in self.row.arguments])


class Sources:
    """All inputs, in order, and a count of those left out by reason."""

    def __init__(self):
        self.inputs = []
        self.left_out = {}

    def leave_out(self, reason):
        self.left_out[reason] = self.left_out.get(reason, 0) + 1

    def add_recorded(self, root):
        for name in sorted(os.listdir(root)) if os.path.isdir(root) else ():
            folder = os.path.join(root, name)
            if not os.path.exists(os.path.join(folder, "run")):
                continue
            reason = dict(fields_of(os.path.join(folder, "run"))).get("left out")
            if reason is not None:
                self.leave_out(reason.decode())
            elif size_of(os.path.join(folder, "given")) > MOST_BYTES:
                self.leave_out("larger than %d MB" % (MOST_BYTES >> 20))
            else:
                self.inputs.append(Recorded(folder, name))

    def add_cases(self, root):
        for group in sorted(os.listdir(root)) if os.path.isdir(root) else ():
            for name in sorted(os.listdir(os.path.join(root, group))):
                self.inputs.append(Case(os.path.join(root, group, name), group + "/" + name))

    def add_real(self, data):
        if os.path.isdir(data):
            self.inputs += [Real(data, row) for row in real_runs.rows(data)]
