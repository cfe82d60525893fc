"""Orbits at the edge of what is right: references far away or apart, data that end close to the image."""

import datetime

import numpy as np
import pytest

from scene_maker import time_text
from velmora_run import SMALL, edit_pool, succeed, velmora

BASE = datetime.datetime(2021, 3, 4, 5, 0, 0)


def set_orbit(path, acquisition, axis, reference_s, times_s):
    """State vectors of the acquisition's orbit at these times, on an axis whose reference is at that time."""
    state = acquisition.orbit.state(times_s)
    texts = ['"%s"' % axis.time(t) if axis.is_text else "%.17g" % axis.time(t) for t in times_s - reference_s]
    entries = {"orbit_representation": 'STR "orbit_pool_double_%s"' % ("utc" if axis.is_text else "double"),
               "orbit_reference_time": 'STR "%s"' % axis.reference()}
    for key, tag, items in (("state_vector_times", "STR" if axis.is_text else "FLT_15", texts),
                            ("state_vector_positions", "FLT_15", ["%.17g" % x for x in state.position_m.ravel()]),
                            ("state_vector_velocities", "FLT_15", ["%.17g" % x for x in state.velocity_m_s.ravel()])):
        entries[key] = "%s_V 0 %d\n{\n%s\n}" % (tag, len(items), "\n".join(items))
    for key, entry in entries.items():
        edit_pool(path, key, "%s %s" % (key, entry))


def set_start(folder, name, time_s):
    edit_pool(folder / "insar.pool", name + "_first_az_time", "%s_first_az_time FLT_15 %.17g" % (name, time_s))


def largest_difference(one, other):
    return float(np.abs(one.product("simu_phase").astype(float) - other.product("simu_phase").astype(float)).max())


def test_single_pass_orbits_with_references_apart(fresh_scene):
    """The ends of the slave's data plus the offset of its reference once rounded to outside, for half of these."""
    options = dict(single_pass=True, **SMALL)
    expected = succeed(fresh_scene("expected", **options)[1])
    for i in range(6):
        made, folder = fresh_scene("run_%d" % i, **options)
        slave_s = -(13.623457 + 0.0371 * i)
        for name, acquisition, reference_s in (("master", made.master, slave_s - 137.25), ("slave", made.slave, slave_s)):
            axis = time_text.UTC_AXIS(BASE + datetime.timedelta(seconds=reference_s))
            set_orbit(folder / (name + ".pool"), acquisition, axis, reference_s, acquisition.state_vector_times_s)
            set_start(folder, name, acquisition.first_azimuth_time_s - reference_s)
        assert largest_difference(succeed(folder), expected) < 1e-5


@pytest.mark.parametrize("single_pass", [False, True])
@pytest.mark.parametrize("far_s", [1e7, 1e9, 2e9])
def test_times_far_from_the_reference(fresh_scene, single_pass, far_s):
    """The same numbers counted from 0 and from the reference near them: the products are the same."""
    runs = []
    for name, zero_s in (("near", far_s), ("far", 0.0)):
        made, folder = fresh_scene(name, single_pass=single_pass, **SMALL)
        for acquisition_name, acquisition in (("master", made.master), ("slave", made.slave)):
            times_s = far_s + acquisition.state_vector_times_s  # rounded to what a double can say
            axis = time_text.SECONDS_AXIS(zero_s)
            state_times_s = acquisition.state_vector_times_s
            set_orbit(folder / (acquisition_name + ".pool"), acquisition, axis, 0.0, state_times_s)
            edit_pool(folder / (acquisition_name + ".pool"), "state_vector_times",
                      "state_vector_times FLT_15_V 0 %d\n{\n%s\n}" % (len(times_s), "\n".join("%.17g" % t for t in times_s)))
            set_start(folder, acquisition_name, (far_s + acquisition.first_azimuth_time_s) - zero_s)
        runs.append(succeed(folder, "-lfl", "DEBUG"))
    near, far = runs
    assert largest_difference(near, far) < 1e-5
    assert not any("iterations count" in line or "no polynomials" in line for line in far.log)
    stop_s = [float(line.split("az_stop_time=")[1]) for run in runs for line in run.log if "scene=1 " in line]
    assert stop_s[1] - stop_s[0] == pytest.approx(far_s, abs=1e-5), "told on the pool's own axis"


@pytest.mark.parametrize("interpolation", ["hermite_0_8", "localhermite_0_8"])
@pytest.mark.parametrize("behind_s, warns", [(0.013, True), (0.06, False)])
def test_data_that_end_close_behind_the_image(fresh_scene, interpolation, behind_s, warns):
    made, folder = fresh_scene(orbit_interpolation=interpolation, **SMALL)
    last_s = float(made.master.azimuth_time_s(SMALL["lines"] - 1))
    times_s = last_s + behind_s - 10.0 * np.arange(12)[::-1]
    set_orbit(folder / "master.pool", made.master, time_text.UTC_AXIS(BASE), 0.0, times_s)
    run = velmora(folder)
    told = [line for line in run.lines("WARN") if "ends the run outside its state vectors" in line]
    assert bool(told) == warns
    if warns:
        assert told[0].startswith("master.pool: %s ends" % interpolation) and "0.013000 s behind the last line" in told[0]
        assert told[0].endswith("0.000000 s and 0.037000 s are missing")
    if run.status:
        alarms = run.lines("ALARM")
        assert warns and "master.pool: %s is asked for " % interpolation in alarms[0]
        assert alarms[1].startswith("interpolation point outside of data constraints")


def test_a_long_orbit_makes_the_pieces_that_the_scene_needs(fresh_scene):
    """20 001 vectors, each with a piece of its own: three lines of the log for every one of them were 21 MB."""
    made, folder = fresh_scene(**SMALL)
    for name, acquisition in (("master", made.master), ("slave", made.slave)):
        middle_s = float(np.mean(acquisition.state_vector_times_s))
        times_s = middle_s + 0.1 * np.arange(-10000, 10001)
        set_orbit(folder / (name + ".pool"), acquisition, time_text.SECONDS_AXIS(0.0), 0.0, times_s)
        set_start(folder, name, acquisition.first_azimuth_time_s)
        edit_pool(folder / (name + ".pool"), "orbit_interpolation", 'orbit_interpolation STR "localpolyfit_7_9"')
    run = succeed(folder)
    assert 0 < run.screen.count("idx_start=") < 1000
