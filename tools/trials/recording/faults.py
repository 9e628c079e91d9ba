# SPDX-License-Identifier: MIT
"""Cameras that go, hang and tell wrong times."""
import time

from trials.cameras import Cameras
from trials.recording.judge import clip, recorded_seconds
from trials.server import Server

HANG_SEEN = 11.0  # seconds
BACK_WITHIN = 3.0
LENGTH_SHARE = 0.01
FAULT_AFTER_MS = 10_000
GONE_SECONDS = 5
HOUR_MS = 3_600_000
HANGS, GOES = "hangs", "goes"

# What a camera of that name says the time is, of what it is.
STAMPS = {
    "jumps": lambda ms: ms + (HOUR_MS if ms > FAULT_AFTER_MS else 0),
    "jumps back": lambda ms: ms + (0 if ms > FAULT_AFTER_MS else HOUR_MS),
    "wraps": lambda ms: (ms + 2**32 - FAULT_AFTER_MS) % 2**32,
    "repeats": lambda ms: ms // 80 * 80,
    "hurries": lambda ms: ms + 9 * max(ms - FAULT_AFTER_MS, 0),
}


class FaultyCameras(Cameras):
    """Each is wrong as its name says. `failed`: when one broke off; `left`: when the server hung up
    on one that was silent."""

    def __init__(self, clip):
        super().__init__(clip, [*STAMPS, HANGS, GOES])
        self.failed, self.left = {}, {}

    def is_there(self, name):
        return name != GOES or time.monotonic() >= self.failed.get(name, 0) + GONE_SECONDS

    def breaks_off(self, name, stamp, connection):
        if name not in (HANGS, GOES) or name in self.failed or stamp <= FAULT_AFTER_MS:
            return False
        self.failed[name] = time.monotonic()
        if name == HANGS:
            connection.recv(1)  # nothing, when the other end has hung up
            self.left[name] = time.monotonic()
        return True

    def said(self, name, stamp):
        return STAMPS.get(name, lambda ms: ms)(stamp)


def run(folder, chosen):
    cameras = FaultyCameras(clip(folder))
    server = Server(folder, cameras.sections())
    server.start()
    cameras.await_recorded()
    time.sleep(60 * chosen.minutes)
    server.end()
    good = True
    for name in cameras.names:
        sent = [moment for moment, _ in cameras.sent[name]]
        pauses = [(b - a, b) for a, b in zip(sent, sent[1:])]
        pause, back = max(pauses) if name in cameras.failed else (0, 0)
        lived = sent[-1] - sent[0] - pause
        share = recorded_seconds(server.archive, name) / lived
        line = f"{name:12}{lived:8.1f} s of pictures, recorded {share:8.2%}"
        good &= abs(share - 1) < LENGTH_SHARE
        if name == HANGS:
            seen = cameras.left[name] - cameras.failed[name]
            line += f", seen after {seen:.1f} s, back {back - cameras.left[name]:.1f} s later"
            good &= seen <= HANG_SEEN and back - cameras.left[name] <= BACK_WITHIN
        if name == GOES:
            late = back - cameras.failed[name] - GONE_SECONDS
            line += f", recorded {late:.1f} s after it came back"
            good &= late <= BACK_WITHIN
        print(line)
    return good
