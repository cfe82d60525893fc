"""The process frame of the real program: usage, sources of keys, keyboard, log, history, signals."""

import os
import re
import shutil
import signal
import subprocess

import pytest

import velmora_run
from scene_maker import pool_file
from velmora_run import LAST_LINE, SMALL, edit_control_file, edit_pool, pool_bytes, succeed, velmora

ENVIRONMENT = {"PATH": os.environ["PATH"], "PARALLEL": "1", "SECONDS_ON_PARAMETER_INPUT": "1"}
HISTORY = ("names", "versions", "dates", "start_times", "end_times", "execution_times")


@pytest.fixture
def small(fresh_scene):
    return fresh_scene(**SMALL)[1]


def start(folder, *program, **options):
    """The program without waiting for it; its screen is a pipe."""
    return subprocess.Popen([*(program or [velmora_run.BINARY]), "-pcf", "scene.pcf"], cwd=folder, env=ENVIRONMENT,
                            stdout=subprocess.PIPE, **options)


@pytest.mark.parametrize("option, text", [("--help", "MASTER_POOL"), ("--version", "0.0.15")])
def test_help_and_version_leave_no_file(tmp_path, option, text):
    done = subprocess.run([velmora_run.BINARY, option], cwd=tmp_path, capture_output=True, text=True, timeout=30, check=False)
    assert done.returncode == 0 and text in done.stdout and done.stderr == ""
    assert list(tmp_path.iterdir()) == []


def test_the_documentation_holds_the_tables_of_keys():
    done = subprocess.run([velmora_run.BINARY, "--keys-markdown"], capture_output=True, text=True, timeout=30, check=True)
    text = (velmora_run.REPOSITORY / "docs" / "keys.md").read_text(encoding="utf-8")
    assert text.split("<!-- keys: begin -->\n")[1].split("<!-- keys: end -->")[0] == done.stdout


def append(name, text):
    def change(folder):
        with open(folder / name, "a", encoding="ascii") as file:
            file.write(text)
    return change


# What a user wrote by mistake, and the one WARNING about it; the run goes on.
DOUBTS = [
    ("a piece of a key", append("scene.pcf", "PHASE phase.ras\n"), (), "unknown parameter PHASE: is SIMU_PHASE meant?"),
    ("a key twice", append("scene.pcf", "LOOKS_RG 2\n"), (),
     "scene.pcf: key LOOKS_RG stands 2 times, and the order of reading decides which line counts: keep one"),
    ("a flag as last argument", None, ("-WRITE_SHIFTS",),
     "argument -WRITE_SHIFTS is not used: no value follows it (a flag needs one, too)"),
    ("a mistyped argument", None, ("-lgo_pp", "x"), "unknown parameter lgo_pp: is log_pp meant?"),
    ("an argument without its dash", None, ("DEM=dem.ras",), "argument DEM=dem.ras is not used: is -DEM dem.ras meant?"),
    ("a mistyped key of a pool", append("dem.pool", "datum_shfit FLT_15_V 0 3\n{\n1\n2\n3\n}\n"), (),
     'dem.pool: unknown key "datum_shfit": is "datum_shift" meant?'),
    ("a scale without a rotation", append("dem.pool", "datum_scale FLT_15 1\n"), (),
     'dem.pool: key "datum_scale" is not used without "datum_rotation"'),
    ("antennas that look to different sides", append("master.pool", 'antenna_look_direction STR "left"\n'), (),
     'master.pool: key "antenna_look_direction": "left", but slave.pool says "right", and that is what counts'),
    ("a product without a path", append("scene.pcf", "H_EARTH\n"), (), "H_EARTH given without a path: nothing is written for it"),
]


@pytest.mark.parametrize("change, arguments, warning", [pytest.param(*case[1:], id=case[0]) for case in DOUBTS])
def test_words_that_nobody_reads_are_told(small, change, arguments, warning):
    edit_control_file(small, SIMU_PHASE=None, H_EARTH=None, FOREIGN_PROGRAMS_KEY="x")
    if change:
        change(small)
    run = succeed(small, *arguments)
    assert run.lines("WARN") == [warning]
    unused = [line for line in run.lines("INFO") if line.startswith("keys of scene.pcf that this run did not use:")]
    assert len(unused) == 1 and unused[0].split(":")[1].split()[0] == "FOREIGN_PROGRAMS_KEY"


@pytest.mark.parametrize("arguments, reason", [
    (("-pfc", "scene.pcf"), "unknown parameter pfc: is pcf meant?"),
    (("scene.pcf",), "argument scene.pcf is not used: is -pcf scene.pcf meant?"),
    (("-pcf",), "argument -pcf is not used: no value follows it (a flag needs one, too)")])
def test_a_question_that_a_mistyped_argument_causes_comes_with_its_reason(small, arguments, reason):
    run = velmora(small, *arguments, control_file=None)
    assert run.status == 1 and run.lines("WARN") == [
        "Configuration file pcf.velmora does not exist!", reason, "No configuration file or parameter not found!",
        "\t  Please input value of parameter : <MASTER_POOL>", "\t  (velmora --help tells the parameters)"]


def test_a_byte_order_mark_is_the_reason_of_the_question(small):
    text = (small / "scene.pcf").read_text(encoding="ascii").replace("MASTER_POOL master.pool\n", "")
    (small / "scene.pcf").write_text("\ufeffMASTER_POOL master.pool\n" + text, encoding="utf-8")
    run = velmora(small)
    assert run.status == 1 and run.lines("WARN")[0].endswith("save the file without the mark (MASTER_POOL)"), run.explanation()


def test_configuration_comes_from_arguments_then_file_then_environment(small):
    keys = dict(line.split(None, 1) for line in (small / "scene.pcf").read_text(encoding="ascii").splitlines())
    arguments = [word for key, value in keys.items() for word in ("-" + key, value)]
    run = succeed(small, *arguments, control_file=None)
    assert "Configuration file pcf.velmora does not exist!" in run.lines("WARN")
    assert "Found parameter in argument list MASTER_POOL = master.pool" in run.lines("DEBUG")
    run = succeed(small, environment={**keys, "LOOKS_RG": "8"}, control_file=None)
    assert "Found parameter in UNIX environment MASTER_POOL=master.pool" in run.lines("DEBUG")
    assert "   h. looks range: ........... 8" in run.lines("INFO")
    (small / "scene.pcf").rename(small / "pcf.velmora")
    run = succeed(small, "-LOOKS_RG", "5", "-LOOKS_RG", "6", environment={"LOOKS_RG": "8"}, control_file=None)
    assert "Found parameter MASTER_POOL=master.pool" in run.lines("DEBUG")
    assert "   h. looks range: ........... 6" in run.lines("INFO")


def test_files_follow_the_name_of_the_program(small, tmp_path):
    (tmp_path / "other-name").symlink_to(velmora_run.BINARY)
    process = start(small, tmp_path / "other-name")
    process.communicate(timeout=60)
    assert process.returncode == 0 and (small / "OK.other-name").read_text() == "0" and (small / "log.other-name").exists()
    assert history(small)[0] == ["other-name"]


def test_a_mistyped_key_is_told_and_the_keyboard_answers(small):
    edit_control_file(small, FOREIGN_PROGRAMS_KEY="x", LOOKS_AZ=None, LOOKS_ZA="5")
    run = succeed(small, keyboard="3\n", environment={"SECONDS_ON_PARAMETER_INPUT": "30"})
    assert run.lines("WARN")[:2] == ["unknown parameter LOOKS_ZA: is LOOKS_AZ meant?",
                                     "No configuration file or parameter not found!"]
    assert "   i. looks azimuth: ......... 3" in run.lines("INFO")


def test_a_silent_keyboard_is_ended_by_the_alarm(small):
    before = pool_bytes(small)
    edit_control_file(small, LOOKS_RG=None)
    process = start(small, stdin=subprocess.PIPE)
    assert process.wait(timeout=60) == -signal.SIGALRM and b"LOOKS_RG := " in process.stdout.read()
    assert (small / "ERROR.velmora").read_text() == "1" and pool_bytes(small) == before


def test_screen_shows_the_log(small):
    """Same lines on standard output and in the file; only emphasis codes differ, and nothing goes to standard error."""
    edit_control_file(small, OBSERVATION_MODE="dual_pass")
    run = succeed(small)
    assert re.sub("\033\\[\\d*m", "", run.screen) == (small / "log.velmora").read_text(encoding="utf-8")
    warning = " - Observation mode forced by PCF -> Read value from PCF, not from pool "
    assert "\033[4mWARN  : global : %s\n\033[0m" % warning in run.screen and run.errors == ""
    # Below the thresholds remains what was said before they were known.
    run = succeed(small, "-lsl", "NO_MESSAGE", "-lfl", "WARNING", "-lfn", "quiet.log")
    said = "Found parameter in argument list"
    assert all(said in line for line in run.screen.splitlines())
    late = [line for line in (small / "quiet.log").read_text().splitlines() if said not in line]
    assert late == ["WARN  : global : " + warning]


def test_header_tells_who_started_the_run(small):
    run = succeed(small, "-lfl", "DEBUG", environment={"PROC_NAME": "nightly", "nightly_VERSION": "7.1"})
    header = run.log.index("INFO  started by: nightly7.1")
    assert run.log[header + 1] == "INFO  using configuration file scene.pcf"
    assert run.log[header + 2].startswith("DEBUG full version: velmora.v0.0.15.")


def test_closed_standard_streams_do_no_harm(small):
    """Descriptors 0 to 2 would otherwise go to pools or products, and log lines into them."""
    before = pool_bytes(small)
    process = start(small, "sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-', velmora_run.BINARY)
    assert process.wait(timeout=60) == 0
    after = pool_bytes(small)
    assert all(after[name] == before[name] for name in ("master.pool", "slave.pool", "dem.pool"))
    assert b"global" not in after["log.pool"] + after["insar.pool"]


@pytest.mark.parametrize("number, text", [(signal.SIGTERM, "software termination signal from kill"),
                                          (signal.SIGFPE, "floating point exception")])
def test_a_signal_between_the_stages(small, number, text):
    before = pool_bytes(small)
    run = velmora_run.HELD_RUN(small, ENVIRONMENT)
    run.read_until(b"B. PHASE SIMULATION")
    run.process.send_signal(number)
    assert run.end() == 1
    reason = "got fatal signal %d: %s" % (number, text)
    assert velmora_run.RUN(small, 1, "", "").lines("ALARM") == [reason, "ORQ_MSG|ERROR|velmora " + reason]
    assert (small / "ERROR.velmora").read_text() == "1" and pool_bytes(small) == before
    assert not [name for name in os.listdir(small) if name.startswith(".velmora_")]  # products that had their room


def test_a_signal_behind_the_change_of_the_pools_comes_too_late(small):
    run = velmora_run.HELD_RUN(small, ENVIRONMENT)
    run.read_until(b"execution time:")
    run.process.send_signal(signal.SIGTERM)
    assert run.end() == 0 and (small / "OK.velmora").read_text() == "0" and history(small)[0] == ["velmora"]


def test_a_broken_pipe_ends_the_run_by_the_signal(small):
    process = start(small)
    process.stdout.readline()
    process.stdout.close()
    assert process.wait(timeout=30) == -signal.SIGPIPE
    assert (small / "ERROR.velmora").read_text() == "1"


def history(folder, name="log.pool"):
    entries = pool_file.read(folder / name)
    return [entries["software_" + what] for what in HISTORY]


def write_history(folder, programs, **lengths):
    """Lists of these programs' runs, but for those of another length; None leaves a list out."""
    for what in HISTORY:
        count = lengths.get(what, len(programs))
        tag, values = ("INT_32", [7] * 9) if what == "execution_times" else ("STR", ['"%s"' % name for name in programs] * 2)
        edit_pool(folder / "log.pool", "software_" + what, count and "software_%s %s_V 0 %d\n{\n%s\n}"
                  % (what, tag, count, "\n".join(str(value) for value in values[:count])))


def test_history_keeps_other_programs_and_replaces_its_own_entry(small):
    write_history(small, ["focus", "velmora", "velmora 2"])
    for _ in range(2):
        succeed(small)
        entries = history(small)
        assert [values[0::2] for values in entries] == [["focus", "velmora 2"]] * 5 + [[7, 7]]
        assert [values[1] for values in entries[:3]] == ["velmora", "0.0.15", "$Date: 2020/01/29 15:03:09 $"]
        assert {len(values) for values in entries} == {3}
    write_history(small, ["focus"])
    succeed(small, "-pid", "job7")
    assert history(small)[0] == ["focus", "job7"] and history(small)[5][0] == 7


def test_history_goes_into_the_insar_pool_when_that_is_the_log_pool(small):
    edit_control_file(small, log_pp="./insar.pool")  # one file under two paths
    before = (small / "log.pool").read_bytes()
    succeed(small, "-OBSERVATION_MODE", "dual_pass")
    assert history(small, "insar.pool")[0] == ["velmora"] and "x_earth_offset" in pool_file.read(small / "insar.pool")
    assert (small / "log.pool").read_bytes() == before


@pytest.mark.parametrize("lengths, reasons", [
    (dict(dates=1), ['key "software_dates": ', "pool error - corrupted parameter pool file"]),
    (dict(execution_times=3), ['key "software_execution_times": ', "pool error - corrupted parameter pool file"]),
    (dict(dates=None), ["software_dates", "pool error - key not found"]),
    ('a"b', ['key "software_names": the value can not be written', "pool error - no or invalid parameter value in file"])])
def test_a_history_that_can_not_be_written_ends_the_run_before_the_simulation(small, lengths, reasons):
    """The lists' lengths, or the program's name."""
    name = lengths if isinstance(lengths, str) else "velmora"
    if name == "velmora":
        write_history(small, ["a", "b"], **lengths)
    before = pool_bytes(small)
    run = velmora(small, "-pid", name, "-lfn", "log.velmora")
    assert not any("B. PHASE" in line for line in run.log)
    last = LAST_LINE.replace("velmora", name)
    assert run.status == 1 and run.lines("ALARM")[-2:] == [reasons[1], last], run.explanation()
    assert any(reasons[0] in line for line in run.lines("ALARM"))
    assert pool_bytes(small) == before


def test_eight_runs_share_one_pool(fresh_scene):
    """Each reads its image from the pool and enters itself there, three times: no entry is lost, no half pool is read."""
    runs, rounds = 8, 3
    folders = [fresh_scene(name="run%d" % i, **SMALL)[1] for i in range(runs)]
    shared = folders[0].parent / "shared.pool"
    shutil.copy(folders[0] / "insar.pool", shared)
    succeed(fresh_scene(name="alone", **SMALL)[1])
    for _ in range(rounds):
        processes = [subprocess.Popen([velmora_run.BINARY, "-pcf", "scene.pcf", "-pid", "job%d" % i, "-INSAR_POOL", str(shared), "-log_pp", str(shared)],
                                      cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL) for i, folder in enumerate(folders)]
        assert [process.wait(timeout=velmora_run.RUN_LIMIT_S) for process in processes] == [0] * runs
    assert sorted(pool_file.read(shared)["software_names"]) == ["job%d" % i for i in range(runs)]
    for folder in folders:
        for product in folder.glob("*.ras"):
            assert product.read_bytes() == (folder.parent / "alone" / product.name).read_bytes(), product
    assert not list(shared.parent.glob("pool_*"))
