# SPDX-License-Identifier: MIT
"""The client's player, as far as it is seen from outside: what it says, and its frame file."""
import collections
import contextlib
import mmap
import os
import pathlib
import select
import subprocess
import tempfile
import time

from trials.clips import read_number
from trials.server import PROGRAM
from trials.system import PATIENCE_SECONDS, cpu_seconds, running

PLAYER = PROGRAM.parent / "vlc-stream"
FRAME_FILE_BYTES = 12_582_912
# What it has shown or told: milliseconds since its start, a number in its clip or None, and the
# position that it told last.
Shown = collections.namedtuple("Shown", "at number told")


@contextlib.contextmanager
def playing(program, url, folder):
    """The player, and the path of its frame file."""
    with tempfile.NamedTemporaryFile(dir=folder) as frame:
        os.truncate(frame.name, FRAME_FILE_BYTES)
        with running(program, url, pathlib.Path(frame.name).name, stdin=subprocess.PIPE,
                     stdout=subprocess.PIPE, env={**os.environ, "TMPDIR": str(folder)}) as process:
            yield process, frame.name


def lines(process, deadline):
    """What it says, until it ends or the moment is there that `deadline()` tells."""
    rest, out = b"", process.stdout.fileno()
    while (left := deadline() - time.monotonic()) > 0 and select.select([out], [], [], left)[0]:
        more = os.read(out, 1 << 16)
        if not more:
            return
        *whole, rest = (rest + more).split(b"\n")
        yield from whole


def shows_nothing(url):
    return TimeoutError(f"the player shows no picture of {url}: {PATIENCE_SECONDS} s have passed, "
                        "or it has ended")


def first_shown(url, folder, program=PLAYER):
    """Milliseconds from the player's start until it shows its first picture, and how many of them
    it has used a core."""
    begun = time.monotonic()
    with playing(program, url, folder) as (process, _):
        for line in lines(process, lambda: begun + PATIENCE_SECONDS):
            if line == b"frame":
                return (time.monotonic() - begun) * 1000, cpu_seconds(process) * 1000
    raise shows_nothing(url)


def watch(url, seconds, folder, program=PLAYER):
    """What the player shows of a stream of numbered pictures, and tells of it, in so many seconds,
    or up to its first picture if that comes later."""
    shown, width, told, some, begun = [], 0, 0, False, time.monotonic()
    with playing(program, url, folder) as (process, frame), open(frame, "rb") as file, \
            mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ) as pixels:
        for line in lines(process, lambda: begun + (seconds if some else PATIENCE_SECONDS)):
            at = (time.monotonic() - begun) * 1000
            word, *values = line.split()
            if word == b"size":
                width = int(values[0])
            elif word == b"time":
                told = int(values[0])
                shown.append(Shown(at, None, told))
            elif word == b"frame":
                some = True
                shown.append(Shown(at, read_number(pixels, width), told))
    if not some:
        raise shows_nothing(url)
    return shown
