"""Fixtures of the end-to-end tests: a missing program fails every test rather than skipping it."""

import os
import shutil

import pytest

import velmora_run
from scene_maker import scene
from scene_maker.options import SCENE_OPTIONS


def pytest_sessionstart(session):
    if not os.access(velmora_run.BINARY, os.X_OK):
        raise pytest.UsageError("no program at %s: build it, or set VELMORA_BINARY" % velmora_run.BINARY)


@pytest.fixture(scope="session")
def scene_store(tmp_path_factory):
    """Scenes by their options, written once per session."""
    made = {}

    def get(options):
        if options not in made:
            folder = tmp_path_factory.mktemp("scene")
            made[options] = (scene.make_scene(options, folder), folder)
        return made[options]

    return get


@pytest.fixture
def fresh_scene(scene_store, tmp_path):
    """A function that puts a scene into a folder of the test's own and returns its truth and that folder."""

    def get(name="run", **options):
        made, source = scene_store(SCENE_OPTIONS(**options))
        return made, shutil.copytree(source, tmp_path / name)

    return get
