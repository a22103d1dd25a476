# SPDX-License-Identifier: MIT
"""Waiting for other processes and threads without assumptions about the speed of the machine."""

import contextlib
import sys
import threading
import time

# Seconds. Only ends a test that would hang: an idle machine needs less than a hundredth of it.
LIMIT = 300


def wait_until(condition):
    """Wait for a condition to be true, and return its value."""
    end = time.monotonic() + LIMIT
    while not (value := condition()):
        assert time.monotonic() < end, "the condition did not become true"
        time.sleep(0.01)
    return value


@contextlib.contextmanager
def no_forced_thread_switches():
    """Other threads run only while the current one waits or releases the GIL explicitly."""
    interval = sys.getswitchinterval()
    sys.setswitchinterval(10_000)
    try:
        yield
    finally:
        sys.setswitchinterval(interval)


def releases_the_gil(call, prepare=lambda: None):
    """Whether another thread can run Python code during a call.

    The system may start the other thread too late for one call, so the call is repeated.
    """
    return any(_other_thread_runs_during(call, prepare) for _ in range(300))


def _other_thread_runs_during(call, prepare):
    prepare()
    runs = []
    is_blocked = threading.Lock()
    is_blocked.acquire()

    def run():
        with is_blocked:
            runs.append(True)

    thread = threading.Thread(target=run)
    with no_forced_thread_switches():
        thread.start()
        is_blocked.release()
        call()
        has_run = bool(runs)
    thread.join()
    return has_run
