"""The executable of a commit, built once."""
import os
import shutil
import subprocess
import tempfile

from runs import Failure

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MARK = "tests/witness/reference"


def git(*words):
    """What git prints; a Failure where it fails."""
    result = subprocess.run(["git", *words], cwd=SOURCE, capture_output=True, text=True, check=False)
    if result.returncode:
        raise Failure("git %s: %s" % (" ".join(words), result.stderr.strip()))
    return result.stdout.strip()


def commit_of(name):
    """The full name of a commit."""
    try:
        return git("rev-parse", "--verify", "--quiet", "--end-of-options", name + "^{commit}")
    except Failure:
        raise Failure("the commit %s, which should be compared with, is not in this clone. Fetch the whole history: "
                      "git fetch --unshallow" % name) from None


def default_commit():
    """The last commit that changed on purpose what runs say or write: it has changed the file MARK too."""
    if git("rev-parse", "--is-shallow-repository") == "true":
        raise Failure("this clone has only a part of the history, so the commit to compare with is not known. Fetch the rest: "
                      "git fetch --unshallow")
    commit = git("log", "-1", "--format=%H", "--", MARK)
    if not commit:
        raise Failure("no commit has changed %s; name one with --reference" % MARK)
    return commit


def build(commit, cache, jobs):
    """The path of the executable of a commit, which is built where it is not there yet."""
    folder = os.path.join(cache, commit)
    tool = os.path.join(folder, "gridforge")
    if os.path.exists(tool):
        return tool
    print("Building the executable of %s" % git("log", "-1", "--format=%h (%s)", commit), flush=True)
    os.makedirs(cache, exist_ok=True)
    work = tempfile.mkdtemp(prefix="building-", dir=cache)
    try:
        source, made = os.path.join(work, "source"), os.path.join(work, "build")
        os.makedirs(source)
        archive = os.path.join(work, "source.tar")
        git("archive", "--output=" + archive, commit)
        commands = (["tar", "-xf", archive, "-C", source],
                    ["cmake", "-S", source, "-B", made, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DGRIDFORGE_BUILD_TESTS=OFF",
                     "-DGRIDFORGE_BUILD_BENCHMARKS=OFF"],
                    ["cmake", "--build", made, "--parallel", str(jobs), "--target", "gridforge"])
        for command in commands:
            result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
            if result.returncode:
                raise Failure("%s\n%s fails for the commit %s" % (result.stdout[-3000:], command[0], commit))
        os.makedirs(folder, exist_ok=True)
        os.rename(os.path.join(made, "gridforge"), tool)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return tool
