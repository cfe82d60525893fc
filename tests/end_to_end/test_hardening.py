"""The shipped program is hardened: read from the binary itself."""

import os
import re
import subprocess

import pytest

import velmora_run


def readelf(option):
    return subprocess.run(["readelf", "-W", option, velmora_run.BINARY], capture_output=True, text=True, check=True).stdout


@pytest.mark.parametrize("what, option, pattern", [
    ("position independent", "-h", r"Type: +DYN"),
    ("position independent program", "-d", r"FLAGS_1.*PIE"),
    ("library addresses bound before main", "-d", r"FLAGS_1.*NOW"),
    ("and read-only from then on", "-l", r"GNU_RELRO"),
    ("no executable stack", "-l", r"GNU_STACK +\S+ \S+ \S+ \S+ \S+ RW +0x"),
    ("stack guards", "-s", r"__stack_chk_fail"),
    ("checked copies", "-s", r"__\w+_chk@GLIBC")])
def test_hardening(what, option, pattern):
    if what == "checked copies" and os.environ.get("VELMORA_BUILD_TYPE", "Release") != "Release":
        pytest.skip("the checked copies of the C library need an optimised build")
    assert re.search(pattern, readelf(option)), what
