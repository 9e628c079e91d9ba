# SPDX-License-Identifier: MIT
"""Pictures that are coded out of order, as the client's player shows them."""
import statistics
import time

from trials.clips import PICTURE_MS
from trials.figures import say
from trials.player import watch
from trials.playing.exact import PICTURES, numbered_clip, numbers
from trials.server import Server

WATCHED_SECONDS = 9.0
NOT_COUNTED_MS = 1000  # at first


def run(options):
    for reordered in (0, 3):
        section = f"[camera A]\nurl = file:{numbered_clip(options, 50, reordered)}\n"
        with Server(options.work / "server-order", section, options.work / "order",
                    program=options.server) as server:
            server.await_live()
            begun = int(time.time())
            time.sleep(14)
            for what in ("live?q=2", f"archive?q=2&speed=1&startTime={begun + 3}"):
                shown = [one for one in numbers(watch(server.url(f"/flv/{what}"), WATCHED_SECONDS,
                                                      options.work, options.player))
                         if one.at > NOT_COUNTED_MS]
                times = [one.at - (one.number - shown[0].number) % PICTURES * PICTURE_MS
                         for one in shown]
                middle = statistics.median_high(times)
                say(f"{what.split('?')[0]}, {reordered} of four pictures out of order",
                    f"{len(shown)} pictures in {WATCHED_SECONDS - NOT_COUNTED_MS / 1000:.0f} s, "
                    f"{max(abs(one - middle) for one in times):.0f} ms off their time at most")
