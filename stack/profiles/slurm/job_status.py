#!/usr/bin/python3
"""job_status.py ID: prints running, success or failed, as Snakemake asks for it. Needs no accounting database."""

import re
import subprocess
import sys
import time

UNDER_WAY = {"PENDING", "CONFIGURING", "RUNNING", "COMPLETING", "SUSPENDED", "REQUEUED", "RESIZING", "SIGNALING", "STAGE_OUT"}


def answer(command):
    return subprocess.run(command, capture_output=True, text=True, check=False)


def state_of(job):
    """None when the controller does not answer: restarting, or too busy."""
    told = answer(["scontrol", "--oneliner", "show", "job", job])
    found = re.search(r"\bJobState=(\w+)", told.stdout)
    if found:
        return found.group(1)
    if "Invalid job id" not in told.stderr:
        return None
    # Forgotten by the controller after MinJobAge: the accounting database remembers, where there is one.
    told = answer(["sacct", "--noheader", "--parsable2", "--allocations", "--format=State", "--jobs", job])
    return told.stdout.split()[0] if told.stdout.split() else "FORGOTTEN"


def main(job):
    state, patience = state_of(job), time.monotonic() + 60
    while state is None and time.monotonic() < patience:
        time.sleep(3)
        state = state_of(job)
    print("running" if state is None or state in UNDER_WAY else "success" if state == "COMPLETED" else "failed")


main(sys.argv[1])
