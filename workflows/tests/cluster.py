"""The ensemble of the sample valley on a cluster with two nodes, which is Slurm on this machine. scripts/test-cluster runs it."""
import os
import shutil
import signal
import socket
import subprocess
import sys
import time
import unittest
from pathlib import Path

import with_workflow
from plain_run import plain_run
from with_workflow import WORKFLOW, FolderTest, make_sample, results

with_workflow.settle_programs()

NODES = ("n1", "n2")
PATIENCE = 60  # seconds for a daemon to answer

CONFIGURATION = """ClusterName=gridforge
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={ports[0]}
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket,cred_expire=10
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool.%n
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.%n.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
MpiDefault=none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU_Memory
SlurmdParameters=config_overrides
SchedulerParameters=batch_sched_delay=0,sched_interval=1,bf_interval=2
SlurmdTimeout=15
KillWait=5
ReturnToService=2
NodeName=n1 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[1]} CPUs=2 RealMemory=4000 State=UNKNOWN
NodeName=n2 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[2]} CPUs=2 RealMemory=4000 State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES MaxTime=INFINITE State=UP
"""

# The tool, except that the first run of -remap writes down where it is and waits to be killed.
HELD_TOOL = """#!/bin/sh
case " $* " in
*" -remap "*)
    if mkdir "{folder}/held" 2> /dev/null; then
        echo "$SLURMD_NODENAME $$" > "{folder}/held/part"
        mv "{folder}/held/part" "{folder}/held/place"
        exec sleep 1000
    fi ;;
esac
exec "{tool}" "$@"
"""


def free_ports(count):
    """Held all at a time, so that they differ."""
    sockets = [socket.socket() for _ in range(count)]
    try:
        for one in sockets:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in sockets]
    finally:
        for one in sockets:
            one.close()


def wait_for(what, ready, patience=PATIENCE):
    end = time.monotonic() + patience
    while not ready():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.2)


class Cluster:
    """The daemons, each a process of ours."""

    def __init__(self, folder):
        self.folder = folder
        for name in ("state", *(f"spool.{node}" for node in NODES)):
            (folder / name).mkdir()
        self.configuration = folder / "slurm.conf"
        host = socket.gethostname().split(".")[0]
        self.configuration.write_text(CONFIGURATION.format(folder=folder, host=host, ports=free_ports(3)))
        self.environment = {**os.environ, "SLURM_CONF": str(self.configuration)}
        self.daemons = {}

    def start(self):
        key = self.folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o600)
        files = [f"--{what}-file={self.folder}/munged.{what}" for what in ("pid", "seed", "log")]
        self._start("munged", "munged", "--foreground", "--force", f"--socket={self.folder}/munge.socket", f"--key-file={key}", *files)
        wait_for("munged", (self.folder / "munge.socket").exists)
        self._start("slurmctld", "slurmctld", "-D", "-i")
        for node in NODES:
            self._start(node, "slurmd", "-D", "-N", node)
        wait_for("both nodes", lambda: self.ask("sinfo", "--noheader", "--Node", "--format=%T").split() == ["idle", "idle"])

    def _start(self, name, *command):
        with open(self.folder / f"{name}.out", "wb") as out:
            self.daemons[name] = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=out, stderr=out)

    def ask(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, check=False).stdout

    def steps_of(self, node):
        """The processes of the jobs of a node: those that look after a job, and all below them."""
        jobs = self.ask("squeue", "--noheader", f"--nodelist={node}", "--states=running", "--format=%A").split()
        mine = os.fsencode(f"SLURM_CONF={self.configuration}")
        found = []
        for place in Path("/proc").glob("[0-9]*"):
            try:
                title = (place / "cmdline").read_bytes().decode(errors="replace")
                if any(f"[{job}." in title for job in jobs) and title.startswith("slurmstepd") \
                        and mine in (place / "environ").read_bytes():
                    found += [int(place.name), *below(int(place.name))]
            except OSError:  # it has ended
                continue
        return found

    def kill(self, node):
        """What a node that loses its power does: nothing more. Returns the processes that have been killed."""
        self.daemons[node].kill()
        self.daemons.pop(node).wait()
        killed = self.steps_of(node)
        for process in killed:
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        return killed

    def stop(self):
        self.ask("scancel", "--full", *self.ask("squeue", "--noheader", "--format=%A").split())
        for name in reversed(list(self.daemons)):
            self.daemons[name].terminate()
            try:
                self.daemons[name].wait(20)
            except subprocess.TimeoutExpired:
                self.daemons[name].kill()
                self.daemons[name].wait()


def below(process):
    """All descendants of a process."""
    children = []
    for thread in Path(f"/proc/{process}/task").glob("*/children"):
        try:
            children += map(int, thread.read_text().split())
        except OSError:  # it has ended
            continue
    return [found for child in children for found in (child, *below(child))]


class ClusterTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.went_well = False
        self.folder.chmod(0o755)
        self.fresh, self.plain = self.folder / "fresh", self.folder / "plain"
        make_sample(self.fresh, "--probabilities", "20", "1", "--patterns", "2")
        shutil.copytree(self.fresh, self.plain)
        plain_run(self.plain)
        (self.folder / "slurm").mkdir()
        self.cluster = Cluster(self.folder / "slurm")
        self.addCleanup(self.show_logs)
        self.addCleanup(self.cluster.stop)
        self.cluster.start()

    def show_logs(self):
        if self.went_well:
            return
        for path in sorted((self.folder / "slurm").glob("*.log")):
            print(f"--- {path.name}", *path.read_text(errors="replace").splitlines()[-30:], sep="\n")

    def start(self, name, target, **environment):
        study = self.folder / name
        shutil.copytree(self.fresh, study)
        with open(self.folder / f"{name}.txt", "wb") as out:
            run = subprocess.Popen(
                ["snakemake", "--snakefile", str(WORKFLOW / "Snakefile"), "--profile", str(WORKFLOW / "profiles/slurm"), "--nocolor",
                 "--latency-wait", "10", target], cwd=study, env={**self.cluster.environment, **environment}, stdin=subprocess.DEVNULL,
                stdout=out, stderr=subprocess.STDOUT)
        self.addCleanup(run.wait)
        self.addCleanup(run.kill)
        return study, run

    def ends_well(self, study, run):
        run.wait()
        console = (self.folder / f"{study.name}.txt").read_text()
        self.assertEqual(run.returncode, 0, console)
        want = results(self.plain)
        self.assertEqual([name for name, got in results(study).items() if got != want[name]], [])

    def test_the_ensemble_and_a_node_that_is_killed(self):
        """The second run makes one difference only, and what is killed is a sleep in place of the tool: a remap of the sample is too
        short to be met at work."""
        study, run = self.start("whole", "all")
        self.ends_well(study, run)
        self.assertEqual(sorted(results(study)), sorted(results(self.plain)))
        self.assertTrue((study / "report.html").exists())

        tool = self.folder / "gridforge"
        tool.write_text(HELD_TOOL.format(folder=self.folder, tool=os.environ["GRIDFORGE"]))
        tool.chmod(0o755)
        study, run = self.start("killed", "differences/warmer_today/1pct.flt", GRIDFORGE=str(tool))
        place = self.folder / "held/place"
        wait_for("the first remap", lambda: place.exists() or run.poll() is not None, sys.maxsize)
        node, process = place.read_text().split()
        self.assertIn(int(process), self.cluster.kill(node))
        self.ends_well(study, run)
        self.assertTrue((study / "differences/warmer_today/1pct.flt").exists())
        self.assertIn(f"due to failure of node {node}\n", (self.cluster.folder / "slurmctld.log").read_text())
        self.went_well = True


def end(*_):
    sys.exit("ended before it was through")  # goes through the cleanups, so nothing stays behind


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, end)
    sys.exit(unittest.main())
