"""Signals at any line between header and footer of a busy run: 8 threads, every line logged."""

import os
import signal

import pytest

from velmora_run import HELD_RUN, pool_bytes, succeed

ROUNDS = 50
ENVIRONMENT = {"PATH": os.environ["PATH"], "PARALLEL": "8"}
TEXTS = {signal.SIGTERM: "software termination signal from kill", signal.SIGINT: "interrupt (rubout)",
         signal.SIGHUP: "hangup", signal.SIGQUIT: "quit (ASCII FS)"}
HEADER, FOOTER = b"using configuration file", b"execution time:"


def start(folder):
    run = HELD_RUN(folder, ENVIRONMENT, "-lfl", "TRACE", "-lsl", "TRACE")
    run.read_until(HEADER)
    return run


def line_count(folder):
    run = start(folder)
    count = 0
    while FOOTER not in run.read_line():
        count += 1
    assert run.end() == 0
    return count


def kill_at(folder, number, line):
    """Exit status and log. The signal comes while the run waits to write, then it runs on."""
    (folder / "log.velmora").unlink(missing_ok=True)
    run = start(folder)
    for _ in range(line):
        run.read_line()
    run.process.send_signal(number)
    return run.end(), (folder / "log.velmora").read_text().splitlines()


@pytest.mark.parametrize("number", TEXTS, ids=lambda number: signal.Signals(number).name)
def test_every_signal_ends_the_run_with_its_two_lines(fresh_scene, number):
    _, folder = fresh_scene(samples=200, lines=160)
    succeed(folder)
    lines = line_count(folder)
    pools = pool_bytes(folder)
    reason = "got fatal signal %d: %s" % (number, TEXTS[number])
    for attempt in range(ROUNDS):
        for name, content in pools.items():
            (folder / name).write_bytes(content)
        for left_over in folder.glob("pool_*"):
            left_over.unlink()
        # Spread evenly over the run, but for its last lines: their number depends on the threads.
        status, log = kill_at(folder, number, int(lines * ((attempt * 0.618) % 1.0) * 0.95))
        assert status == 1, (status, log[-3:])
        assert [line for line in log if "fatal signal" in line] == [
            "ALARM : global : " + reason, "ALARM : global : ORQ_MSG|ERROR|velmora " + reason]
        assert (folder / "ERROR.velmora").read_text() == "1" and not (folder / "OK.velmora").exists()
        # A pool that was being rewritten may be cut short; then its whole content is in the temporary file beside it.
        contents = [path.read_bytes() for path in (folder / "insar.pool", *folder.glob("pool_*"))]
        assert any(content.startswith(pools["insar.pool"][:100]) and b"\nz_earth_offset" in content for content in contents)
