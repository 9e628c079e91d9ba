# SPDX-License-Identifier: MIT
"""Processes, ports, files in memory and waiting."""
import concurrent.futures
import contextlib
import os
import socket
import subprocess
import time

CPU_CLOCK = 2  # of a process: the time that it was running, as exactly as it is known
PATIENCE_SECONDS = 20
LOOK_SECONDS = 0.02
END_SECONDS = 5


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def stop(process):
    process.terminate()
    try:
        process.wait(END_SECONDS)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


@contextlib.contextmanager
def running(*command, **options):
    """A process, which ends with the block."""
    process = subprocess.Popen([str(word) for word in command], **options)
    try:
        yield process
    finally:
        stop(process)


def cpu_seconds(process):
    """Of all its threads, those that have ended too, by the clock that the system keeps for it."""
    return time.clock_gettime((~process.pid << 3) | CPU_CLOCK)


def await_that(condition, what, seconds=PATIENCE_SECONDS):
    """`what` is told when it doesn't come true in so many seconds."""
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(LOOK_SECONDS)


def at_once(*calls):
    """Their results, of calls that run at the same time."""
    with concurrent.futures.ThreadPoolExecutor(len(calls)) as threads:
        return [one.result() for one in [threads.submit(call) for call in calls]]


def forget(path):
    """What the system holds of a file in memory."""
    with open(path, "rb") as file:
        os.fsync(file.fileno())
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)
