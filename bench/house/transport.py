# SPDX-License-Identifier: MIT
"""What each of many watchers of one live stream costs, beside a relay that has the same camera and
as many watchers at the same time."""
import selectors
import tempfile
import threading
import time

from house.parts import Cameras, House, Relay
from house.table import Table
from trials import clips
from trials.clips import CLIP_SECONDS
from trials.system import cpu_seconds

MOST_CPU_PERCENT = 0.20  # of a core, a watcher
SETTLE_SECONDS = 3
ALL_ARRIVES = 0.85  # of the clip's bytes, with its sound, at each watcher


class Watchers:
    """Connections whose streams are read and thrown away."""

    def __init__(self, connections):
        self.connections = connections
        self.bytes = {one: 0 for one in connections}
        self.over = False
        self.thread = threading.Thread(target=self._read, daemon=True)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.over = True
        self.thread.join()
        for one in self.connections:
            one.close()

    def _read(self):
        waste = bytearray(1 << 16)
        with selectors.DefaultSelector() as selector:
            for one in self.connections:
                selector.register(one, selectors.EVENT_READ)
            while not self.over:
                for key, _ in selector.select(0.2):
                    got = key.fileobj.recv_into(waste)
                    self.bytes[key.fileobj] += got
                    if got == 0:
                        selector.unregister(key.fileobj)


def shares(processes, seconds):
    """Of a core, in percent, for so long."""
    begun, before = time.monotonic(), [cpu_seconds(one) for one in processes]
    time.sleep(seconds)
    passed = time.monotonic() - begun
    return [100 * (cpu_seconds(one) - was) / passed for one, was in zip(processes, before)]


def measure(below, source, address, sound, watchers, seconds):
    """Each program's share alone and with its watchers."""
    with tempfile.TemporaryDirectory(dir=below) as name, \
            House(name, [address], f"sound = {'yes' if sound else 'no'}\n") as house, \
            Relay(address, sound) as relay:
        both = [house, relay]
        processes = [one.process for one in both]
        time.sleep(SETTLE_SECONDS)
        alone = shares(processes, seconds)
        connections = [one.connect("/flv/live?q=2") for one in both for _ in range(watchers)]
        with Watchers(connections) as readers:
            time.sleep(SETTLE_SECONDS)
            before = dict(readers.bytes)
            watched = shares(processes, seconds)
            least = min(readers.bytes[one] - before[one] for one in connections)
    expected = source.stat().st_size / CLIP_SECONDS * seconds
    if least < expected * ALL_ARRIVES:
        raise RuntimeError(f"a watcher got {least} bytes of {expected:.0f}")
    return alone, watched


def run(below, watchers=16, seconds=12):
    source = clips.plain(clips.cache(), "1280x720", "2M", 50)
    table = Table(f"Transport: {watchers} watchers of 1280x720, 25 pictures a second, 2 Mbit/s, "
                  "% of a core", "GStreamer")
    with Cameras([source]) as cameras:
        silent = None
        for sound in (False, True):
            alone, watched = measure(below, source, cameras.addresses[0], sound, watchers, seconds)
            # The relay converts sound whether anybody listens or not; the server only then.
            silent = silent or alone
            base = [alone[0], silent[1]]
            each = [(one - less) / watchers for one, less in zip(watched, base)]
            what = "with sound" if sound else "pictures only"
            table.row(f"{what}: nobody watches", base[0], base[1], digits=2)
            table.row(f"{what}: {watchers} watch", watched[0], watched[1], digits=2)
            table.row(f"{what}: added by each", each[0], each[1], MOST_CPU_PERCENT, digits=3)
    return table.good
