"""The Debian packages, by Debian's own judge."""

import os
import shutil
import subprocess

import pytest


@pytest.mark.skipif(shutil.which("lintian") is None, reason="needs lintian")
def test_packages_have_no_errors(tmp_path):
    subprocess.run([os.environ["VELMORA_CPACK"], "--config", os.path.join(os.environ["VELMORA_BUILD"], "CPackConfig.cmake"),
                    "-B", str(tmp_path)], check=True, capture_output=True, timeout=600)
    packages = sorted(tmp_path.glob("*.deb"))
    assert "velmora" in {package.name.split("_")[0] for package in packages}
    for package in packages:
        done = subprocess.run(["lintian", "--fail-on", "error", str(package)], capture_output=True, text=True, timeout=600, check=False)
        assert done.returncode == 0, done.stdout
        needed = subprocess.run(["dpkg-deb", "--field", str(package), "Depends"], capture_output=True, text=True, check=True)
        if package.name.startswith("velmora_"):
            assert {word.split()[0] for word in needed.stdout.split(",")} == {"libc6", "libgcc-s1", "libstdc++6"}
