"""A stack under the real engine: killed in the middle, resumed, and equal to single runs."""

import csv
import os
import re
import shutil
import signal
import time

import pytest

from stack_kit import ENGINE, PROGRAM, call, made_stack, products, single_run, spoil_two_pairs
import pair_run

pytestmark = pytest.mark.skipif(shutil.which("snakemake") is None, reason="needs Debian's snakemake")


def wait_until(condition, what):
    end = time.monotonic() + 600
    while not condition():
        assert time.monotonic() < end, what
        time.sleep(0.1)


def test_twelve_pairs_killed_in_the_middle_and_resumed(tmp_path):
    killed_in_the_middle_and_resumed(tmp_path, "local", ("--cores", "3"))


def killed_in_the_middle_and_resumed(tmp_path, profile, arguments):
    """Three runs at once; Slurm goes on with what it has queued when the engine is dead."""
    stack = made_stack(tmp_path)
    pairs = sorted(path.name for path in (stack / "pairs").iterdir())
    bad, worse = pairs[3], pairs[7]
    spoil_two_pairs(stack, bad, worse)
    with ENGINE(stack, profile, held=(5, 6, 7)) as engine:
        twice, finished_before = kill_and_resume(engine, arguments, bad, worse)
        starts = [pair for _, _, pair in engine.starts()]
        assert {pair: starts.count(pair) for pair in pairs} == {
            pair: 0 if pair == bad else 2 if pair in twice else 1 for pair in pairs}
    for pair, before in finished_before.items():
        assert (stack / "pairs" / pair / "simu_phase.ras").stat().st_mtime_ns == before
    check_products_and_what_is_told(engine, pairs, bad, worse)
    check_repair(engine, bad, worse)


def kill_and_resume(engine, arguments, bad, worse):
    """@return the pairs that had to start twice, and those done before with their products' times"""
    stack, profile = engine.stack, engine.profile
    process = engine.start(*arguments)
    for number in (5, 6, 7):
        engine.read_until(number, b"B. PHASE SIMULATION")
    # All three places are taken by held runs. The engine and two of these die, the third goes on without an engine.
    process.send_signal(signal.SIGKILL)
    process.wait()
    started = {number: (pid, pair) for number, pid, pair in engine.starts()}
    assert len(started) == 8 and bad not in {pair for _, pair in started.values()}
    for number in (5, 6):
        os.kill(started[number][0], signal.SIGKILL)
    wait_until(lambda: "1 running" in engine.status(), "two killed runs hold their locks")
    ended = {pair for number, (_, pair) in started.items() if number < 5}
    is_worse = worse in ended
    assert profile != "local" or engine.status().startswith("12 pairs: %d done, 1 running, %d failed, 5 left" % (5 - is_worse, 1 + is_worse))
    finished_before = {pair: (stack / "pairs" / pair / "simu_phase.ras").stat().st_mtime_ns for pair in ended - {worse}}

    engine.finish("--unlock", status=0)
    process = engine.start(*arguments, "--config", "pictures=simu_phase")
    wait_until(lambda: re.search("1 running, [12] failed, 0 left", engine.status()), "the rest does not end")
    engine.release(7)
    assert process.wait(timeout=600) == 1, engine.log()  # two pairs failed
    return {started[5][1], started[6][1]}, finished_before


def check_products_and_what_is_told(engine, pairs, bad, worse):
    stack, tmp_path = engine.stack, engine.stack.parent
    good = [pair for pair in pairs if pair not in (bad, worse)]
    for pair in good:
        assert products(stack / "pairs" / pair) == single_run(tmp_path, pair), pair
        assert not list((stack / "pairs" / pair).glob(".velmora_*"))
        assert (stack / "pairs" / pair / "simu_phase.png").read_bytes()[:4] == b"\x89PNG"
    with open(stack / "reports.csv", newline="") as file:
        table = {row["pair"]: row for row in csv.DictReader(file)}
    assert [pair for pair in pairs if table[pair]["state"] == "done"] == good
    assert all(table[pair]["pixels"] == "3000" and table[pair]["product_bytes"] == "84224" for pair in good)
    for text in (engine.log(), engine.status()):
        assert "12 pairs: 10 done, 0 running, 2 failed, 0 left" in text
        assert re.search(r"1 failed: check: .*H_EARTH.*\n    %s\n" % bad, text)
        assert re.search(r"1 failed: (?!check).*\n    %s\n" % worse, text)
    assert "H_EARTH" in (stack / "pairs" / bad / "check.txt").read_text()
    assert (stack / "pairs" / worse / "log.velmora").stat().st_size > 0


def check_repair(engine, bad, worse):
    """A failed pair is run again when somebody says so, and no sooner; one whose check failed, once it is repaired."""
    stack, tmp_path, count = engine.stack, engine.stack.parent, len(engine.starts())
    folder = stack / "pairs" / worse
    assert "retry" in call(PROGRAM, "run", folder, folder=tmp_path, status=1, **engine.environment)
    shutil.copy(tmp_path / "dem.ras", folder / "dem.ras")
    control = stack / "pairs" / bad / "scene.pcf"
    control.write_text(control.read_text().replace("none/h.ras", "h_earth.ras"))
    call(PROGRAM, "run", folder, folder=tmp_path, status=1, **engine.environment)
    assert worse + "\n" in call(PROGRAM, "retry", stack, worse, folder=tmp_path)
    for pair in (bad, worse):
        call(PROGRAM, "run", stack / "pairs" / pair, "--threads", 2, "--memory", 300, folder=tmp_path, **engine.environment)
        assert products(stack / "pairs" / pair) == single_run(tmp_path, pair)
        report = pair_run.read_report(stack / "pairs" / pair)
        assert {key["key"]: key["value"] for key in report["keys"]}["MEMORY_LIMIT"] == "236"
    assert len(engine.starts()) == count + 2
    assert engine.status() == "12 pairs: 12 done, 0 running, 0 failed, 0 left\n"


def test_products_decide_and_words_are_checked(tmp_path):
    stack = made_stack(tmp_path, images=3, next_images=1)
    pairs = [path for path in (stack / "pairs").iterdir()]
    call("sh", "-c", "ls -d stack/pairs/* | xargs -n 1 -P 2 %s run" % PROGRAM, folder=tmp_path, VELMORA=os.environ["VELMORA_BINARY"])
    assert "2 done" in call(PROGRAM, "status", stack, folder=tmp_path)
    (pairs[0] / "az_coreg.ras").write_bytes((pairs[0] / "az_coreg.ras").read_bytes()[:-4])
    report = (pairs[1] / "report.json").read_text()
    stopped = {"SIGTERM": "15: software termination signal from kill", "a fault": "11: segmentation violation"}
    for name, state in (("SIGTERM", "left"), ("a fault", "failed")):
        cut = report.replace('"exit_status": 0', '"exit_status": 1').replace(
            '"last_error": null', '"last_error": "got fatal signal %s"' % stopped[name])
        (pairs[1] / "report.json").write_text(cut)
        assert pair_run.outcome(pairs[1]).state == state
    (pairs[1] / "report.json").write_text(report)
    assert call(PROGRAM, "status", stack, "--list", folder=tmp_path).splitlines() == [
        "2 pairs: 1 done, 0 running, 0 failed, 1 left", "  left: " + pairs[0].name]
    with ENGINE(stack) as engine:
        engine.finish("--cores", "2", status=0)
    assert "2 done" in call(PROGRAM, "status", stack, folder=tmp_path)
    control = pairs[1] / "scene.pcf"  # a product in a device, one whose key stands without a path: once left for ever
    control.write_text(control.read_text().replace("SIMU_PHASE simu_phase.ras", "SIMU_PHASE /dev/null").replace(" h_earth.ras", ""))
    (pairs[1] / "report.json").write_text("[]")
    call(PROGRAM, "run", pairs[1], folder=tmp_path, VELMORA=os.environ["VELMORA_BINARY"])
    assert pair_run.outcome(pairs[1]).state == "done" and '"/dev/null"' in (pairs[1] / "report.json").read_text()
    control.write_text("DEM\n")  # no file: the program itself has to tell
    (pairs[1] / "report.json").unlink()
    call(PROGRAM, "run", pairs[1], "--memory", "500", folder=tmp_path, VELMORA=os.environ["VELMORA_BINARY"], status=1)
    assert pair_run.outcome(pairs[1]).state == "failed"
    (tmp_path / "strange").mkdir()
    (tmp_path / "strange" / "pairs.csv").write_text("master,slave\na,b\n")
    for words, says in ((["status", "strange"], 'strange/pairs.csv: has no column "pair"'),
                        (["status", "none"], "none/pairs.csv"), (["retry", stack, "x__y"], "x__y"), (["run"], "FOLDER"),
                        (["run", "none"], "none"), (["status", stack, "--colour"], "--colour"), ([], "SUBCOMMAND")):
        assert says in call(PROGRAM, *words, folder=tmp_path, status=1)
