"""Signals at any moment between header and footer of a busy run: 8 threads, every line logged. Takes minutes."""

import os
import signal
import subprocess
import time

import pytest

import velmora_run
from velmora_run import pool_bytes, succeed

ROUNDS = 50
LONGEST_END_S = 2.0
TEXTS = {signal.SIGTERM: "software termination signal from kill", signal.SIGINT: "interrupt (rubout)",
         signal.SIGHUP: "hangup", signal.SIGQUIT: "quit (ASCII FS)"}
HEADER, FOOTER = b"using configuration file", b"execution time:"


def start(folder):
    environment = {"PATH": os.environ["PATH"], "PARALLEL": "8"}
    return subprocess.Popen([velmora_run.BINARY, "-pcf", "scene.pcf", "-lfl", "TRACE", "-lsl", "TRACE"], cwd=folder,
                            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, env=environment)


def wait_for(stream, text):
    seen = b""
    while text not in seen:
        piece = stream.read1(65536)
        assert piece, "the run ended before %r" % text
        seen += piece
    return seen


def duration_s(folder):
    process = start(folder)
    wait_for(process.stdout, HEADER)
    begin = time.monotonic()
    process.communicate()
    assert process.returncode == 0
    return time.monotonic() - begin


def kill_after(folder, number, delay_s):
    """Exit status, seconds from signal to end, log. None when the run was over before the signal."""
    (folder / "log.velmora").unlink(missing_ok=True)
    process = start(folder)
    wait_for(process.stdout, HEADER)
    # Meanwhile somebody reads the screen, else the run would only wait for its pipe.
    reader = subprocess.Popen(["cat"], stdin=process.stdout, stdout=subprocess.DEVNULL)
    process.stdout.close()
    time.sleep(delay_s)
    process.send_signal(number)
    sent = time.monotonic()
    status = process.wait(timeout=30)
    elapsed_s = time.monotonic() - sent
    reader.wait()
    log = (folder / "log.velmora").read_bytes()
    return None if FOOTER in log else (status, elapsed_s, log.decode().splitlines())


@pytest.mark.parametrize("number", TEXTS, ids=lambda number: signal.Signals(number).name)
def test_every_signal_ends_the_run_with_its_two_lines(fresh_scene, number):
    _, folder = fresh_scene(samples=200, lines=160)
    succeed(folder)
    whole_s = duration_s(folder)
    pools = pool_bytes(folder)
    done, attempt = 0, 0
    reason = "got fatal signal %d: %s" % (number, TEXTS[number])
    while done < ROUNDS:
        for name, content in pools.items():
            (folder / name).write_bytes(content)
        for left_over in folder.glob("pool_*"):
            left_over.unlink()
        # Spread evenly over the run; a run that was faster than the measured one does not count.
        outcome = kill_after(folder, number, whole_s * ((attempt * 0.618) % 1.0) * 0.95)
        attempt += 1
        assert attempt < 4 * ROUNDS, "the runs end before the signals"
        if outcome is None:
            continue
        status, elapsed_s, lines = outcome
        assert status == 1, (status, lines[-3:])
        assert elapsed_s < LONGEST_END_S
        assert [line for line in lines if "fatal signal" in line] == [
            "ALARM : global : " + reason, "ALARM : global : ORQ_MSG|ERROR|velmora " + reason]
        assert (folder / "ERROR.velmora").read_text() == "1" and not (folder / "OK.velmora").exists()
        # A pool that was being rewritten may be cut short; then its whole content is in the temporary file beside it.
        contents = [path.read_bytes() for path in (folder / "insar.pool", *folder.glob("pool_*"))]
        assert any(content.startswith(pools["insar.pool"][:100]) and b"\nz_earth_offset" in content for content in contents)
        done += 1
