"""The same under a Slurm of this machine: its daemons on the loopback address, all their files in a temporary folder."""

import os
import shutil
import socket
import subprocess
import time

import pytest

from stack_kit import ENGINE, made_stack
from test_engine import killed_in_the_middle_and_resumed

DAEMONS = ("munged", "slurmctld", "slurmd")
CONFIGURATION = """ClusterName=loopback
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthInfo=socket={folder}/munge.socket
SlurmctldPort={port}
SlurmdPort={node_port}
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core_Memory
MpiDefault=none
ReturnToService=2
AccountingStorageType=accounting_storage/none
JobAcctGatherType=jobacct_gather/none
SlurmdParameters=config_overrides
NodeName={host} NodeAddr=127.0.0.1 CPUs=3 RealMemory=16000
PartitionName=main Nodes={host} Default=YES State=UP
"""


def free_ports(count):
    sockets = [socket.create_server(("127.0.0.1", 0)) for _ in range(count)]
    ports = [each.getsockname()[1] for each in sockets]
    for each in sockets:
        each.close()
    return ports


@pytest.fixture
def slurm(tmp_path_factory, monkeypatch):
    missing = [name for name in (*DAEMONS, "snakemake", "sbatch") if shutil.which(name, path=os.environ["PATH"] + ":/usr/sbin") is None]
    if missing or os.getuid() != 0:
        pytest.skip("needs to be root, and Debian's slurm-wlm and snakemake: missing: %s" % " ".join(missing))
    folder = tmp_path_factory.mktemp("slurm")
    for name in ("state", "spool"):
        (folder / name).mkdir()
    (folder / "munge.key").write_bytes(os.urandom(128))
    (folder / "munge.key").chmod(0o600)
    ports = free_ports(2)
    host = socket.gethostname().split(".")[0]
    (folder / "slurm.conf").write_text(CONFIGURATION.format(host=host, folder=folder, port=ports[0], node_port=ports[1]))
    monkeypatch.setenv("SLURM_CONF", str(folder / "slurm.conf"))
    commands = (["/usr/sbin/munged", "--foreground", "--force", *("--%s=%s/munge.%s" % (name.replace("-", "_").replace("_", "-"), folder, end)
                 for name, end in (("key-file", "key"), ("socket", "socket"), ("pid-file", "pid"), ("log-file", "log"), ("seed-file", "seed")))],
                ["/usr/sbin/slurmctld", "-D", "-c"], ["/usr/sbin/slurmd", "-D", "-N", host])
    with open(folder / "daemons.log", "wb") as log:
        daemons = [subprocess.Popen(command, stdout=log, stderr=log, stdin=subprocess.DEVNULL) for command in commands]
    try:
        until = time.monotonic() + 60
        while "idle" not in subprocess.run(["sinfo", "--noheader"], capture_output=True, text=True, check=False).stdout:
            if time.monotonic() > until:
                pytest.skip("Slurm does not start here: %s" % (folder / "daemons.log").read_text()[-500:])
            time.sleep(0.5)
        yield folder
    finally:
        subprocess.run(["scancel", "--user=root"], capture_output=True, check=False)
        until = time.monotonic() + 30
        while subprocess.run(["squeue", "--noheader"], capture_output=True, check=False).stdout and time.monotonic() < until:
            time.sleep(0.5)
        for daemon in reversed(daemons):
            daemon.terminate()
            daemon.wait(timeout=60)


def test_twelve_pairs_killed_in_the_middle_and_resumed(slurm, tmp_path):
    killed_in_the_middle_and_resumed(tmp_path, "slurm", ())


def test_a_job_array_runs_a_stack(slurm, tmp_path):
    stack = made_stack(tmp_path, images=4, next_images=2)
    engine = ENGINE(stack)
    script = "velmora-stack run $(sed -n ${SLURM_ARRAY_TASK_ID}p list)"
    subprocess.run("ls -d stack/pairs/* > list && sbatch --wait --array=1-5 --cpus-per-task=2 --mem=400 --wrap '%s'" % script,
                   shell=True, cwd=tmp_path, env=engine.environment, check=True, timeout=300)
    assert engine.status().startswith("5 pairs: 5 done")
