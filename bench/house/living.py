# SPDX-License-Identifier: MIT
"""How soon live is seen by who connects, and how much later than the camera sends it, beside a
relay that has the same camera. The camera tells when each picture leaves it."""
import random
import tempfile
import time

from house.parts import Cameras, House, Relay
from house.table import NEARLY_ALL, Table
from trials import clips, flv
from trials.clips import PICTURES_PER_SECOND
from trials.player import PLAYER, first_shown
from trials.system import at_once

FIRST_MS = 150  # each time
DELAY_MS = 60  # of nearly all pictures
ALL_ARRIVE = 0.95


def connected(source, cameras):
    """Milliseconds from connecting to the first whole picture, and to the one that was the newest
    of the camera's at that time."""
    newest, begun, first = cameras.newest, time.monotonic(), None
    with source.connect("/flv/live?q=2") as one:
        for tag in flv.pictures(one.makefile("rb"), source.chunked):
            first = first or tag.at
            if cameras.is_of(tag, newest):
                return (first - begun) * 1000, (tag.at - begun) * 1000
    raise RuntimeError("the newest picture never came")


def delays(source, cameras, seconds):
    """Milliseconds that pictures come later than they left the camera; not those sent at first."""
    found, spoilt, caught_up = [], 0, time.monotonic() + 1
    with source.connect("/flv/live?q=2") as one:
        for tag in flv.pictures(one.makefile("rb"), source.chunked):
            if tag.at > caught_up:
                left = cameras.left_at(tag)
                if left is None:
                    spoilt += 1
                else:
                    found.append((tag.at - left) * 1000)
            if tag.at > caught_up + seconds:
                break
    if len(found) < seconds * PICTURES_PER_SECOND * ALL_ARRIVE or spoilt > 1:
        raise RuntimeError(f"{len(found)} pictures came as they were sent, {spoilt} otherwise")
    return found


def run(below, times=20, seconds=10):
    table = Table(f"Living: 1280x720, 25 pictures a second, 2 Mbit/s; {times} connections, "
                  f"{seconds} s of pictures, milliseconds", "GStreamer")
    for group in (2, 10):
        source = clips.plain(clips.cache(), "1280x720", "2M", group * PICTURES_PER_SECOND)
        with Cameras([source], tells=True) as cameras, \
                tempfile.TemporaryDirectory(dir=below) as name, \
                House(name, cameras.addresses) as house, Relay(cameras.addresses[0]) as relay:
            house.await_live()
            time.sleep(1)
            joined = {house: [], relay: []}
            for _ in range(times):
                for one in joined:
                    time.sleep(random.uniform(0.05, 0.25))
                    joined[one].append(connected(one, cameras))
            behind = at_once(*(lambda one=one: delays(one, cameras, seconds) for one in joined))
            player = [first_shown(house.url("/flv/live?q=2"), below)[0]
                      for _ in range(times // 2 if PLAYER.exists() else 0)]

        what = f"key pictures {group} s apart: "
        for kind, text in ((0, "first picture"), (1, "newest picture")):
            ours, peer = ([figures[kind] for figures in joined[one]] for one in joined)
            table.spread(what + text, ours, peer, FIRST_MS)
        if player:
            table.spread(what + "first in the player", player, None, FIRST_MS)
        table.spread(what + "later than sent", *behind, DELAY_MS, NEARLY_ALL)
    return table.good
