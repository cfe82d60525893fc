"""What a run writes may be no other of its files. Every refusal: status 1, both roles named, no file changed."""

import os

import pytest

from scene_maker.record_database import move_orbit
from velmora_run import SMALL, content, edit_control_file, edit_pool, succeed, velmora


def link(name, target):
    return lambda folder: (folder / name).symlink_to(target)


def hard_link(name, target):
    return lambda folder: os.link(folder / target, folder / name)


def move(source, target):
    return lambda folder: (folder / source).rename(folder / target)


def record_database(folder):
    move_orbit(folder / "master.pool", folder / "db")


# The role that a key gives to its file.
ROLES = dict(SIMU_PHASE="simulated phase", RG_COREG="position in slave, range", AZ_COREG="position in slave, azimuth",
             X_EARTH="Earth-fixed x", Y_EARTH="Earth-fixed y", H_EARTH="terrain height", INCIDENCE="incidence angle",
             INSAR_POOL="InSAR pool", log_pp="log pool", MASTER_POOL="master pool", DEM="DEM", lfn="log file", REPORT="report")
# What names a file that has this other role already.
NAMED_TWICE = {
    "DEM": "SIMU_PHASE=dem.ras INCIDENCE=dem.ras log_pp=dem.ras lfn=dem.ras",
    "pool of the DEM": "H_EARTH=dem.pool",
    "master pool": "log_pp=master.pool",
    "slave pool": "X_EARTH=./slave.pool INSAR_POOL=slave.pool",
    "InSAR pool": "RG_COREG=insar.pool lfn=insar.pool REPORT=insar.pool",
    "control file": "SIMU_PHASE=scene.pcf lfn=scene.pcf",
    "log file": "AZ_COREG=log.velmora REPORT=log.velmora",
    "OK file": "lfn=OK.velmora SIMU_PHASE=OK.velmora",
    "ERROR file": "SIMU_PHASE=ERROR.velmora REPORT=ERROR.velmora",
    "STOP file": "SIMU_PHASE=STOP.velmora",
    "simulated phase": "REPORT=simu_phase.ras",
    "Earth-fixed x": "Y_EARTH=x_earth.ras",
}
# Arguments, of which the first is told; what is there before; the other role.
REFUSED = [
    *((argument, [], other) for other, arguments in NAMED_TWICE.items() for argument in arguments.split()),
    ("SIMU_PHASE=a", [hard_link("a", "dem.ras")], "DEM"),
    ("H_EARTH=b SIMU_PHASE=a", [link("a", "new"), link("b", "new")], "simulated phase"),
    ("H_EARTH=new SIMU_PHASE=a", [link("a", "./b"), link("b", "new")], "simulated phase"),
    ("SIMU_PHASE=a INSAR_POOL=new", [link("a", "new")], "InSAR pool"),
    ("H_EARTH=a_n.ras LINE_OF_SIGHT=a", [], "line of sight, north"),
    ("lfn=link", [link("link", "master.pool")], "master pool"),
    ("SIMU_PHASE=ERROR.velmora", [link("ERROR.velmora", "away")], "ERROR file"),
    ("H_EARTH=status/OK.job status=status pid=job", [lambda folder: (folder / "status").mkdir()], "OK file"),
    ("DEM=OK.velmora", [move("dem.ras", "OK.velmora")], "OK file"),
    ("MASTER_POOL=ERROR.velmora", [move("master.pool", "ERROR.velmora")], "ERROR file"),
    *((key + "=simu_phase.ras.vrt VRT_SIDECARS=1", [], "sidecar") for key in ("H_EARTH", "REPORT", "lfn")),
    ("DEM=simu_phase.ras.vrt VRT_SIDECARS=1", [move("dem.ras", "simu_phase.ras.vrt")], "sidecar"),
    ("SIMU_PHASE=db/orbit", [record_database], "record database of the master's orbit"),
    ("H_EARTH=db/format.dat", [record_database], "record database of the master's orbit"),
    ("lfn=db/orbit", [record_database], "record database db/format.dat"),
]


def as_arguments(text):
    return [word for pair in text.split() for word in ("-" + pair.split("=")[0], pair.split("=")[1])]


@pytest.mark.parametrize("arguments, before, other", REFUSED, ids=[case[0] for case in REFUSED])
def test_no_file_has_two_roles(fresh_scene, arguments, before, other):
    key, value = arguments.split()[0].split("=")
    role = ROLES[key]
    _, folder = fresh_scene(**SMALL)
    for change in before:
        change(folder)
    kept = content(folder)
    run = velmora(folder, *as_arguments(arguments))
    alarms = [line for line in run.screen.splitlines() if "ALARM : " in line]
    assert run.status == 1 and alarms[-1].endswith(" terminated with error!"), run.screen
    named = [line for line in alarms if role in line and other in line]
    assert named and key in named[0] and value in named[0], alarms
    after = content(folder)
    assert {name: after.get(name) for name in kept} == kept
    new = set(after) - set(kept) - {"log.velmora", "log.job"}
    assert new <= {"ERROR.velmora", "status/ERROR.job"}, new
    assert all((folder / name).read_text() == "1" for name in new)
    checked = velmora(folder, "--check", *as_arguments(arguments))
    assert checked.status == 1 and role in checked.screen and other in checked.screen, checked.screen


# What is only read may be one file in several roles; the log pool may be the InSAR pool; what is lost harms nothing.
ALLOWED = [
    ("SLAVE_POOL=master.pool", lambda folder: edit_pool(folder / "master.pool", "antenna_look_direction",
                                                        'antenna_look_direction STR "right"')),
    ("", record_database),
    ("log_pp=link", link("link", "insar.pool")),
    ("SIMU_PHASE=/dev/null H_EARTH=/dev/null lfn=/dev/null", lambda folder: None),
    ("SIMU_PHASE=new", link("ERROR.velmora", "new")),
]


@pytest.mark.parametrize("arguments, before", ALLOWED, ids=[case[0] for case in ALLOWED])
def test_what_may_have_two_roles(fresh_scene, arguments, before):
    _, folder = fresh_scene(**SMALL)
    edit_control_file(folder, log_pp="log.pool")
    before(folder)
    succeed(folder, *as_arguments(arguments))
