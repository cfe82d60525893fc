"""The process frame of the real program: sources of keys, log, status files, failures, signals, history, usage."""

import os
import pathlib
import pty
import re
import shutil
import signal
import stat
import subprocess
import time

import pytest

import velmora_run
from scene_maker import pool_file
from velmora_run import edit_control_file, edit_pool, pool_bytes, succeed, velmora

SMALL = dict(samples=60, lines=50, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0)
LAST_LINE = "ORQ_MSG|ERROR|velmora terminated with error!"
HISTORY = ("software_names", "software_versions", "software_dates", "software_start_times", "software_end_times",
           "software_execution_times")


@pytest.fixture
def small(fresh_scene):
    return fresh_scene(**SMALL)[1]


def control_keys(folder):
    return dict(line.split(None, 1) for line in (folder / "scene.pcf").read_text(encoding="ascii").splitlines())


def start(folder, *arguments, parallel="1", **options):
    """The program without waiting for it; its screen is a pipe unless told otherwise."""
    options.setdefault("stdout", subprocess.PIPE)
    return subprocess.Popen([velmora_run.BINARY, "-pcf", "scene.pcf", *arguments], cwd=folder, stdin=subprocess.DEVNULL,
                            env={"PATH": os.environ["PATH"], "PARALLEL": parallel, "SECONDS_ON_PARAMETER_INPUT": "1"},
                            **options)


def wait_for_line(process, text):
    for line in process.stdout:
        if text in line:
            return
    raise AssertionError("the run ended before %r" % text)


# Usage

def test_help_and_version_leave_nothing_behind(tmp_path):
    tracer = ["strace", "-f", "-o", str(tmp_path / "trace"), "-e", "trace=open,openat,creat,mkdir"]
    traced = shutil.which("strace") and not velmora_run.SANITIZED and subprocess.run(
        [*tracer, "true"], check=False, capture_output=True).returncode == 0
    for request, texts in (("--help", ["MASTER_POOL", "usage:", "example:", "SECONDS_ON_PARAMETER_INPUT"]),
                           ("--version", ["0.0.15"])):
        empty = tmp_path / request
        empty.mkdir()
        done = subprocess.run([*(tracer if traced else []), velmora_run.BINARY, request], cwd=empty, capture_output=True,
                              text=True, timeout=60, check=False)
        assert done.returncode == 0 and done.stderr == ""
        assert all(text in done.stdout for text in texts), done.stdout
        assert not list(empty.iterdir())
        if traced:
            assert "O_CREAT" not in (tmp_path / "trace").read_text()
    full = subprocess.run([velmora_run.BINARY, "--help"], stdout=open("/dev/full", "wb"), check=False)
    assert full.returncode == 1


# Sources of keys

def test_each_source_can_carry_the_whole_run(small):
    keys = control_keys(small)
    arguments = [word for key, value in keys.items() for word in ("-" + key, value)]
    run = succeed(small, *arguments, control_file=None)
    assert "Configuration file pcf.velmora does not exist!" in run.lines("WARN")
    assert "Found parameter in argument list MASTER_POOL = master.pool" in run.lines("DEBUG")

    run = succeed(small, control_file=None, environment=keys)
    assert "Found parameter in UNIX environment MASTER_POOL=master.pool" in run.lines("DEBUG")

    (small / "scene.pcf").rename(small / "pcf.velmora")
    run = succeed(small, control_file=None)
    assert "Found parameter MASTER_POOL=master.pool" in run.lines("DEBUG")


def test_keys_in_any_order_of_the_control_file(small):
    path = small / "scene.pcf"
    path.write_text("\n".join(reversed(path.read_text().splitlines())) + "\n" + "x" * 5000 + " y\n")
    run = succeed(small, "-lfl", "TRACE")
    assert "rewinding file position" in run.lines("TRACE")
    assert "Parameter MASTER_POOL not found in argument list!" in run.lines("TRACE")


def test_files_follow_the_name_of_the_program(small, tmp_path):
    program = tmp_path / "other-name"
    program.symlink_to(velmora_run.BINARY)
    (small / "scene.pcf").rename(small / "pcf.other-name")
    done = subprocess.run([program], cwd=small, stdin=subprocess.DEVNULL, capture_output=True, check=False, timeout=60,
                          env={"PATH": os.environ["PATH"], "PARALLEL": "1"})
    assert done.returncode == 0
    assert (small / "OK.other-name").read_text() == "0" and (small / "log.other-name").exists()
    assert history(small)[0] == ["other-name"]


def test_a_mistyped_key_is_told_after_the_summary_and_before_the_question(small):
    edit_control_file(small, FOREIGN_PROGRAMS_KEY="x", H_EART="h.ras")
    run = succeed(small, "-looks_rg", "5", "-RANGE_TIME_SHIFT", "-1e-6")
    warnings = [line for line in run.log if "unknown parameter" in line]
    assert warnings == ["WARN  unknown parameter H_EART: is H_EARTH meant?",
                        "WARN  unknown parameter looks_rg: is LOOKS_RG meant?"]
    place = run.log.index(warnings[0])
    assert run.log[place - 1] == "INFO   "
    assert any("h. looks range" in line for line in run.log[:place])

    edit_control_file(small, MASTER_POOL=None, MASTER_POL="master.pool")
    run = velmora(small)
    assert run.status == 1
    hint = run.log.index("WARN  unknown parameter MASTER_POL: is MASTER_POOL meant?")
    assert run.log[hint + 1] == "WARN  No configuration file or parameter not found!"
    assert run.lines("ALARM") == ["end of input at the keyboard: no value of parameter MASTER_POOL", LAST_LINE]


def test_a_terminal_is_asked(small):
    edit_control_file(small, LOOKS_RG=None)
    master, slave = pty.openpty()
    process = subprocess.Popen([velmora_run.BINARY, "-pcf", "scene.pcf"], cwd=small, stdin=slave, stdout=slave, stderr=slave,
                               env={"PATH": os.environ["PATH"], "PARALLEL": "1", "SECONDS_ON_PARAMETER_INPUT": "30"})
    os.close(slave)
    screen = b""
    answered = False
    try:
        while True:
            screen += os.read(master, 65536)
            if not answered and b"LOOKS_RG := " in screen:
                os.write(master, b"4\n")
                answered = True
    except OSError:  # the other end is closed
        pass
    os.close(master)
    assert process.wait(timeout=60) == 0 and answered
    assert "Read from keyboard parameter LOOKS_RG = 4" in (small / "log.velmora").read_text()


# Log

def test_thresholds_and_emphasis(small):
    edit_control_file(small, OBSERVATION_MODE="dual_pass")
    run = succeed(small, "-lsl", "loud", "-lfl", "WARNING")
    assert run.screen.split("Found parameter in argument list lsl = loud\n")[1] == ""
    late = [line for line in run.log if not line.startswith("DEBUG Found parameter in argument list")]
    assert late and all(line.startswith("WARN ") for line in late)
    assert b"\033" not in (small / "log.velmora").read_bytes()

    os.unlink(small / "log.velmora")
    run = succeed(small, "-lfl", "NO_MESSAGE", "-lsl", "QA_WARNING")
    assert "\033[4mWARN  : global :  - Observation mode forced" in run.screen
    assert "INFO" not in run.screen
    assert all(line.startswith("DEBUG Found parameter in argument list") for line in run.log)


def test_header_tells_who_started_the_run(small):
    run = succeed(small, "-lfl", "DEBUG", environment={"PROC_NAME": "nightly", "nightly_VERSION": "7.1"})
    header = run.log.index("INFO  started by: nightly7.1")
    assert run.log[header + 1] == "INFO  using configuration file scene.pcf"
    assert run.log[header + 2].startswith("DEBUG full version: velmora.v0.0.15.")
    assert re.search(r"compile date: \S+  compiled by: \S+", run.log[header - 2])


def test_values_can_not_forge_log_lines(small):
    run = velmora(small, "-IFGRM_INVALID", "1\nALARM : global : ORQ_MSG|ERROR|velmora\033[7m%s")
    assert run.status == 1
    assert [line for line in run.log if "ORQ_MSG" in line and line.startswith("ALARM ORQ")] == ["ALARM " + LAST_LINE]
    assert any("1\\x0AALARM : global : ORQ_MSG|ERROR|velmora\\x1B[7m%s" in line for line in run.log)


def test_an_early_failure_leaves_the_log_in_the_temporary_file(small):
    run = velmora(small, "-pid", "p" * 256)
    assert run.status == 1 and not run.log
    assert "parameter pid: a text of 256 characters" in run.screen
    logs = [path for path in pathlib.Path("/tmp").glob("log.*") if path.is_file() and os.access(path, os.R_OK)
            and "parameter pid: a text of 256" in path.read_text(errors="replace")]
    assert logs
    for path in logs:
        path.unlink()


def test_closed_standard_streams_do_no_harm(small):
    """Descriptors 0 to 2 would otherwise go to pools or products, and log lines into them."""
    before = pool_bytes(small)
    done = subprocess.run(["sh", "-c", 'exec "$0" -pcf scene.pcf <&- >&- 2>&-', velmora_run.BINARY], cwd=small,
                          env={"PATH": os.environ["PATH"], "PARALLEL": "1"}, check=False, timeout=60)
    assert done.returncode == 0
    for name in ("master.pool", "slave.pool", "dem.pool"):
        assert (small / name).read_bytes() == before[name]
    assert b"global" not in (small / "log.pool").read_bytes() + (small / "insar.pool").read_bytes()


# Failures

def test_an_enumeration_error_tells_the_valid_values(small):
    edit_pool(small / "dem.pool", "ellipsoid_type", 'ellipsoid_type STR "Clarke"')
    run = velmora(small)
    assert run.status == 1
    message, valid_values, last = run.lines("ALARM")[-3:]
    assert re.fullmatch(r"enumeration data type - invalid value of class \S*EllipsoidType\S*: Clarke", message), message
    assert re.fullmatch(r"Valid values are: ('[^']+' )+", valid_values), valid_values
    assert last == LAST_LINE


def test_a_thrown_text_is_the_reason(small):
    """No room for the threads' stacks: the runner throws a plain text."""
    if velmora_run.SANITIZED or not shutil.which("prlimit"):
        pytest.skip("needs prlimit and a program without sanitizers")
    before = pool_bytes(small)
    done = subprocess.run(["prlimit", "--as=150000000", velmora_run.BINARY, "-pcf", "scene.pcf"], cwd=small, check=False,
                          env={"PATH": os.environ["PATH"], "PARALLEL": "64"}, capture_output=True, timeout=60)
    assert done.returncode == 1
    assert velmora_run.RUN(small, 1, "", "").lines("ALARM")[-2:] == ["can not create thread", LAST_LINE]
    assert pool_bytes(small) == before


def test_planted_links_are_not_followed(small):
    (small / "victim").write_text("precious")
    for name in ("ERROR.velmora", "OK.velmora"):
        (small / name).symlink_to("victim")
    succeed(small)
    assert (small / "victim").read_text() == "precious"
    status = (small / "OK.velmora").lstat()
    assert stat.S_ISREG(status.st_mode) and (small / "OK.velmora").read_text() == "0"
    assert not (small / "ERROR.velmora").exists()


# Signals

def got(number, text):
    return ["got fatal signal %d: %s" % (number, text), "ORQ_MSG|ERROR|velmora got fatal signal %d: %s" % (number, text)]


@pytest.mark.parametrize("number, text", [(signal.SIGTERM, "software termination signal from kill"),
                                          (signal.SIGFPE, "floating point exception"),
                                          (signal.SIGURG, "urgent socket condition")])
def test_a_signal_between_the_stages(small, number, text):
    before = pool_bytes(small)
    process = start(small)
    wait_for_line(process, b"B. PHASE SIMULATION")
    process.send_signal(signal.SIGSTOP)  # so that the run can not end before the signal
    process.send_signal(number)
    process.send_signal(signal.SIGCONT)
    assert process.wait(timeout=30) == 1
    run = velmora_run.RUN(small, 1, "", "")
    assert run.lines("ALARM") == got(number, text)
    assert (small / "ERROR.velmora").read_text() == "1" and pool_bytes(small) == before


def test_a_broken_pipe_ends_the_run_by_the_signal(small):
    process = start(small)
    process.stdout.readline()
    process.stdout.close()
    assert process.wait(timeout=30) == -signal.SIGPIPE
    assert (small / "ERROR.velmora").read_text() == "1"


def test_a_signal_before_initialisation(small):
    """The tracer sends it while the controller installs its handlers, which stand since the program's start."""
    tracer = ["strace", "-f", "-o", "/dev/null", "-e", "trace=rt_sigaction", "-e",
              "inject=rt_sigaction:signal=SIGTERM:when=20"]
    if velmora_run.SANITIZED or not shutil.which("strace") or subprocess.run(["strace", "-o", "/dev/null", "true"],
                                                                             check=False).returncode:
        pytest.skip("needs strace and a program without sanitizers")
    done = subprocess.run([*tracer, velmora_run.BINARY, "-pcf", "scene.pcf"], cwd=small, capture_output=True, check=False,
                          timeout=60)
    assert done.returncode == 255
    assert done.stdout == b"ALARM : global : got fatal signal 15: software termination signal from kill\n"
    assert not (small / "ERROR.velmora").exists()


# History

def history(folder, name="log.pool"):
    entries = pool_file.read(folder / name)
    return [entries[key] for key in HISTORY]


def write_history(folder, names, times=None, **replaced):
    lists = {key: list(names) for key in HISTORY[:-1]}
    lists.update(replaced)
    for key, values in lists.items():
        edit_pool(folder / "log.pool", key,
                  "%s STR_V 0 %d\n{\n%s}" % (key, len(values), "".join('    "%s"\n' % value for value in values)))
    values = [7] * len(names) if times is None else times
    edit_pool(folder / "log.pool", HISTORY[-1],
              "%s INT_32_V 0 %d\n{\n%s}" % (HISTORY[-1], len(values), "".join("    %d\n" % value for value in values)))


def test_history_of_a_first_run_and_a_rerun(small):
    earliest = time.strftime("%Y-%m-%dT%H:%M:%S")
    succeed(small)
    first = history(small)
    assert [len(values) for values in first] == [1] * 6
    names, versions, dates, starts, ends, times = (values[0] for values in first)
    assert (names, versions, dates) == ("velmora", "0.0.15", "$Date: 2020/01/29 15:03:09 $")
    assert earliest <= starts <= ends <= time.strftime("%Y-%m-%dT%H:%M:%S")
    seconds = time.mktime(time.strptime(ends, "%Y-%m-%dT%H:%M:%S")) - time.mktime(time.strptime(starts, "%Y-%m-%dT%H:%M:%S"))
    assert times == seconds
    time.sleep(1.1)
    succeed(small)
    assert len(history(small)[0]) == 1 and history(small)[3] > first[3]


def test_history_keeps_other_programs_and_its_own_place(small):
    write_history(small, ["focus", "velmora", "velmora 2"])
    succeed(small)
    assert [values[0] for values in history(small)] == ["focus"] * 5 + [7]
    assert [values[2] for values in history(small)] == ["velmora 2"] * 5 + [7]
    assert history(small)[1][1] == "0.0.15" and len(history(small)[0]) == 3

    write_history(small, ["focus"])
    succeed(small, "-pid", "job7")
    assert history(small)[0] == ["focus", "job7"] and history(small)[5][0] == 7


def test_history_in_the_insar_pool(small):
    edit_control_file(small, log_pp="insar.pool")
    before = (small / "log.pool").read_bytes()
    succeed(small)
    assert history(small, "insar.pool")[0] == ["velmora"]
    assert (small / "log.pool").read_bytes() == before


def test_a_log_pool_that_is_the_insar_pool_under_another_path(small):
    edit_control_file(small, log_pp="./insar.pool")
    succeed(small, "-OBSERVATION_MODE", "dual_pass")
    entries = pool_file.read(small / "insar.pool")
    assert entries["software_names"] == ["velmora"] and "x_earth_offset" in entries


@pytest.mark.parametrize("key", HISTORY[1:])
def test_history_lists_of_different_lengths_are_a_pool_error(small, key):
    if key == HISTORY[-1]:
        write_history(small, ["a", "b"], times=[1, 2, 3])
    else:
        write_history(small, ["a", "b"], **{key: ["x"]})
    before = pool_bytes(small)
    run = velmora(small)
    assert run.status == 1, run.explanation()
    assert run.lines("ALARM")[-3].startswith('log.pool: key "%s": ' % key), run.explanation()
    assert run.lines("ALARM")[-2:] == ["pool error - corrupted parameter pool file", LAST_LINE]
    assert pool_bytes(small) == before


def test_history_list_missing_or_of_another_type(small):
    for key, entry, reason in (("software_dates", None, "pool error - key not found"),
                               ("software_execution_times", "software_execution_times STR \"7\"",
                                "pool error - wrong parameter type")):
        write_history(small, ["a"])
        edit_pool(small / "log.pool", key, entry)
        before = pool_bytes(small)
        run = velmora(small)
        assert run.status == 1 and run.lines("ALARM")[-2:] == [reason, LAST_LINE], run.explanation()
        assert pool_bytes(small) == before
        os.unlink(small / "log.velmora")
