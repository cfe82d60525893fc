"""What cmake --install leaves: programs, texts made from --help, and libraries for projects outside the tree."""

import gzip
import os
import pathlib
import re
import shutil
import subprocess
import sys

import numpy as np
import pytest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(REPOSITORY / "demo"), str(REPOSITORY / "tests" / "end_to_end")]

import velmora_run  # noqa: E402
from scene_maker import scene  # noqa: E402
from scene_maker.ellipsoid import WGS84  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402

BUILD, CMAKE = pathlib.Path(os.environ["VELMORA_BUILD"]), os.environ["VELMORA_CMAKE"]
COMPANIONS = [name for name, folder in (("velmora-view", "view"), ("velmora-import", "import"),
                                          ("velmora-stack", "stack")) if (BUILD / folder / name).exists()]


def call(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=600, check=False, **options)
    assert done.returncode == 0, done.stdout[-3000:] + done.stderr[-3000:]
    return done.stdout


@pytest.fixture(scope="module")
def prefix(tmp_path_factory):
    folder = tmp_path_factory.mktemp("prefix")
    call(CMAKE, "--install", BUILD, "--prefix", folder)
    return folder


def man_page(prefix, program):
    folder = prefix / "share" / "man" / "man1"
    packed = folder / (program + ".1.gz")
    text = gzip.decompress(packed.read_bytes()).decode() if packed.exists() else (folder / (program + ".1")).read_text()
    return text.replace("\\-", "-").replace("\\&", "").replace("\\e", "\\")


def test_processor_needs_the_run_time_alone(prefix):
    needed = {line.split()[0].split(".so")[0] for line in call("ldd", prefix / "bin" / "velmora").splitlines()}
    assert {name.split("/")[-1] for name in needed} <= {"linux-vdso", "libstdc++", "libm", "libgcc_s", "libc", "ld-linux-x86-64",
                                                       "libpthread"}


@pytest.mark.parametrize("program", ["velmora", *COMPANIONS])
def test_texts_say_what_help_says(prefix, program):
    binary, page = prefix / "bin" / program, man_page(prefix, program)
    completion = prefix / "share" / "bash-completion" / "completions" / program
    commands = re.findall(r"^  ([a-z0-9]+) ", call(binary, "--help").partition("Subcommands:")[2], re.M)
    for command in [[], *([command] for command in commands)]:
        text = call(binary, *command, "--help")
        assert text in page
        words = re.findall(r"^  (?:-\w,)?(--?[a-z-]+)", text, re.M) if commands else [
            "-" + key for key in re.findall(r"^  (\w+)  ", text.partition("\nenvironment")[0], re.M)]
        script = "source %s; COMP_WORDS=(%s); COMP_CWORD=%d; _%s %s -; echo ${COMPREPLY[*]}" % (
            completion, " ".join([program, *command, "-"]), 1 + len(command), program.replace("-", "_"), program)
        assert set(words) <= set(call("bash", "-c", script).split()) and words
    offered = call("bash", "-c", "source %s; COMP_WORDS=(x ''); COMP_CWORD=1; _%s x ''; echo ${COMPREPLY[*]}" % (
        completion, program.replace("-", "_"))).split()
    assert set(commands) <= set(offered)


def test_docs_are_there(prefix):
    folder = prefix / "share" / "doc" / "velmora"
    assert (folder / "README.md").exists()
    assert {path.name for path in (REPOSITORY / "docs").iterdir()} == {path.name for path in (folder / "docs").iterdir()}


def test_example_outside_the_tree_finds_the_package(prefix, tmp_path):
    source = tmp_path / "ground_point"
    shutil.copytree(REPOSITORY / "examples" / "ground_point", source)
    call(CMAKE, "-S", source, "-B", tmp_path / "build", "-DCMAKE_PREFIX_PATH=%s" % prefix)
    call(CMAKE, "--build", tmp_path / "build")
    run = tmp_path / "run"
    scene.make_scene(SCENE_OPTIONS(**velmora_run.SMALL), run)
    left = velmora_run.succeed(run)
    point = np.array([left.product(axis + "_earth")[20, 31] + left.offset(axis) for axis in "xyz"])
    longitude, latitude, height = WGS84.geodetic(point)
    printed = [float(word) for word in call(tmp_path / "build" / "ground_point", 31, 20, cwd=run).split()]
    assert np.allclose(printed, [np.degrees(longitude), np.degrees(latitude), height], rtol=0, atol=[1e-7, 1e-7, 6e-3])
    assert abs(printed[2] - 100.0) < 1.0  # flat terrain at 100 m, coordinates in steps of half a metre


def test_project_inside_another_keeps_its_warnings_to_itself(tmp_path):
    (tmp_path / "CMakeLists.txt").write_text(
        "cmake_minimum_required(VERSION 3.25)\nproject(user LANGUAGES CXX)\nadd_subdirectory(%s velmora EXCLUDE_FROM_ALL)\n"
        "add_executable(user main.cpp)\ntarget_link_libraries(user PRIVATE velmora::errors)\n" % REPOSITORY)
    (tmp_path / "main.cpp").write_text(  # an unused variable, a lossy conversion
        '#include "lib/baselib/errors/parse_number.h"\n'
        'int main() { double unused; int lossy = 2.5; double value = 0.0;\n'
        '  return ParseReal("2.5", value) == PARSE_RESULT::OK && value == 2.5 ? lossy - 2 : 1; }\n')
    call(CMAKE, "-S", tmp_path, "-B", tmp_path / "build")
    call(CMAKE, "--build", tmp_path / "build")
    call(tmp_path / "build" / "user")
    assert not list((tmp_path / "build").rglob("CTestTestfile.cmake"))
