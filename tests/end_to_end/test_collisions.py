"""What a run writes may be no other of its files. Every refusal: status 1, both roles named, no file changed."""

import os

import pytest

from scene_maker.record_database import move_orbit
from velmora_run import SMALL, edit_control_file, edit_pool, succeed, velmora

VRT = dict(VRT_SIDECARS="1")


def link(name, target):
    return lambda folder: (folder / name).symlink_to(target)


def hard_link(name, target):
    return lambda folder: os.link(folder / target, folder / name)


def move(source, target):
    return lambda folder: (folder / source).rename(folder / target)


def record_database(folder):
    move_orbit(folder / "master.pool", folder / "db")


# Arguments, what is there before, and the two roles.
REFUSED = [
    (dict(SIMU_PHASE="dem.ras"), [], "simulated phase", "DEM"),
    (dict(X_EARTH="./slave.pool"), [], "Earth-fixed x", "slave pool"),
    (dict(H_EARTH="dem.pool"), [], "terrain height", "pool of the DEM"),
    (dict(Y_EARTH="x_earth.ras"), [], "Earth-fixed y", "Earth-fixed x"),
    (dict(SIMU_PHASE="scene.pcf"), [], "simulated phase", "control file"),
    (dict(RG_COREG="insar.pool"), [], "position in slave, range", "InSAR pool"),
    (dict(AZ_COREG="log.velmora"), [], "position in slave, azimuth", "log file"),
    (dict(SIMU_PHASE="a"), [hard_link("a", "dem.ras")], "simulated phase", "DEM"),
    (dict(SIMU_PHASE="a", H_EARTH="b"), [link("a", "new"), link("b", "new")], "terrain height", "simulated phase"),
    (dict(SIMU_PHASE="a", H_EARTH="new"), [link("a", "./b"), link("b", "new")], "terrain height", "simulated phase"),
    (dict(SIMU_PHASE="a", INSAR_POOL="new"), [link("a", "new")], "simulated phase", "InSAR pool"),
    (dict(H_EARTH="a_n.ras", LINE_OF_SIGHT="a"), [], "line of sight, north", "terrain height"),
    (dict(INCIDENCE="dem.ras"), [], "incidence angle", "DEM"),
    (dict(log_pp="dem.ras"), [], "log pool", "DEM"),
    (dict(log_pp="master.pool"), [], "log pool", "master pool"),
    (dict(INSAR_POOL="slave.pool"), [], "InSAR pool", "slave pool"),
    (dict(lfn="insar.pool"), [], "InSAR pool", "log file"),
    (dict(lfn="dem.ras"), [], "log file", "DEM"),
    (dict(lfn="scene.pcf"), [], "log file", "control file"),
    (dict(lfn="link"), [link("link", "master.pool")], "log file", "master pool"),
    (dict(lfn="OK.velmora"), [], "OK file", "log file"),
    (dict(SIMU_PHASE="OK.velmora"), [], "simulated phase", "OK file"),
    (dict(SIMU_PHASE="ERROR.velmora"), [], "simulated phase", "ERROR file"),
    (dict(SIMU_PHASE="ERROR.velmora"), [link("ERROR.velmora", "away")], "simulated phase", "ERROR file"),
    (dict(SIMU_PHASE="STOP.velmora"), [], "simulated phase", "STOP file"),
    (dict(H_EARTH="status/OK.job", status="status", pid="job"), [lambda folder: (folder / "status").mkdir()], "terrain height", "OK file"),
    (dict(DEM="OK.velmora"), [move("dem.ras", "OK.velmora")], "OK file", "DEM"),
    (dict(MASTER_POOL="ERROR.velmora"), [move("master.pool", "ERROR.velmora")], "ERROR file", "master pool"),
    (dict(REPORT="insar.pool"), [], "InSAR pool", "report"),
    (dict(REPORT="simu_phase.ras"), [], "simulated phase", "report"),
    (dict(REPORT="log.velmora"), [], "report", "log file"),
    (dict(REPORT="ERROR.velmora"), [], "report", "ERROR file"),
    (dict(H_EARTH="simu_phase.ras.vrt", **VRT), [], "terrain height", "sidecar"),
    (dict(REPORT="simu_phase.ras.vrt", **VRT), [], "sidecar", "report"),
    (dict(lfn="h_earth.ras.vrt", **VRT), [], "sidecar", "log file"),
    (dict(DEM="simu_phase.ras.vrt", **VRT), [move("dem.ras", "simu_phase.ras.vrt")], "sidecar", "DEM"),
    (dict(SIMU_PHASE="db/orbit"), [record_database], "simulated phase", "record database of the master's orbit"),
    (dict(H_EARTH="db/format.dat"), [record_database], "terrain height", "record database of the master's orbit"),
    (dict(lfn="db/orbit"), [record_database], "log file", "record database db/format.dat"),
]


def content(folder):
    """Every name and what is there; not what tells of the run itself."""
    return {str(path.relative_to(folder)): os.readlink(path) if path.is_symlink() else path.read_bytes()
            for path in folder.rglob("*") if path.is_symlink() or path.is_file()}


@pytest.mark.parametrize("arguments, before, role, other", [
    pytest.param(*case, id=" ".join("%s=%s" % pair for pair in case[0].items())) for case in REFUSED])
def test_no_file_has_two_roles(fresh_scene, arguments, before, role, other):
    _, folder = fresh_scene(**SMALL)
    for change in before:
        change(folder)
    kept = content(folder)
    run = velmora(folder, *(word for key, value in arguments.items() for word in ("-" + key, value)))
    alarms = [line for line in run.screen.splitlines() if "ALARM : " in line]
    assert run.status == 1 and alarms[-1].endswith(" terminated with error!"), run.screen
    named = [line for line in alarms if role in line and other in line]
    assert named and all(key in named[0] and value in named[0] for key, value in list(arguments.items())[:1]), alarms
    for name, bytes_before in kept.items():
        path = folder / name
        now = os.readlink(path) if path.is_symlink() else path.read_bytes()
        assert now == bytes_before, name
    new = set(content(folder)) - set(kept) - {"log.velmora", "log.job"}
    assert new <= {"ERROR.velmora", "status/ERROR.job"}, new
    assert all((folder / name).read_text() == "1" for name in new)
    checked = velmora(folder, "--check", *(word for key, value in arguments.items() for word in ("-" + key, value)))
    assert checked.status == 1 and role in checked.screen and other in checked.screen, checked.screen


# What is only read may be one file in several roles; the log pool may be the InSAR pool; what is lost harms nothing.
ALLOWED = [
    (dict(SLAVE_POOL="master.pool"), [lambda folder: edit_pool(folder / "master.pool", "antenna_look_direction",
                                                               'antenna_look_direction STR "right"')]),
    ({}, [record_database]),
    (dict(log_pp="link"), [link("link", "insar.pool")]),
    (dict(SIMU_PHASE="/dev/null", H_EARTH="/dev/null", lfn="/dev/null"), []),
    (dict(SIMU_PHASE="new"), [link("ERROR.velmora", "new")]),
]


@pytest.mark.parametrize("arguments, before", ALLOWED, ids=lambda value: " ".join(value) if isinstance(value, dict) else "")
def test_what_may_have_two_roles(fresh_scene, arguments, before):
    _, folder = fresh_scene(**SMALL)
    edit_control_file(folder, log_pp="log.pool")
    for change in before:
        change(folder)
    succeed(folder, *(word for key, value in arguments.items() for word in ("-" + key, value)))
