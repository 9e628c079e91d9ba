# SPDX-License-Identifier: MIT
"""Live: of a camera that knows when it has sent each picture, and for many watchers."""
import contextlib
import itertools
import random
import subprocess
import time

from trials import clips, flv
from trials.cameras import Cameras
from trials.clips import PICTURES_PER_SECOND
from trials.figures import say, spread
from trials.server import Server
from trials.system import running

CONNECTIONS = 12
WATCHERS = 16
SETTLE_SECONDS, WATCHED_SECONDS = 3, 20


def connected(server):
    """Milliseconds until the newest picture is there."""
    before = time.monotonic()
    for tag in server.pictures("/flv/live?q=2"):
        if tag.stamp > 0:
            break
        last = tag.at
    return (last - before) * 1000


def delays(server, camera, pictures):
    """Milliseconds from the camera's sending to the watcher, in the first second and later."""
    came = [(tag.at, tag.stamp, flv.checksum(tag)) for tag in
            itertools.islice(server.pictures("/flv/live?q=2"), pictures)]
    sent = {}
    for at, checksum in camera.sent["A"]:
        sent.setdefault(checksum, []).append(at)  # the clip is played over and over
    found = [], []
    for at, stamp, checksum in came:
        before = [one for one in sent.get(checksum, []) if one <= at]
        if stamp > 0 and before:
            found[stamp >= 1000].append((at - before[-1]) * 1000)
    return found


def tell_delays(options):
    for group in (50, 250):
        camera = Cameras(clips.plain(options.work, "1280x720", "2M", group), ["A"])
        with Server(options.work / "server-live", camera.sections(), options.work / "live",
                    program=options.server) as server:
            server.await_live()
            time.sleep(group / PICTURES_PER_SECOND)
            shown = []
            for _ in range(CONNECTIONS):
                time.sleep(random.uniform(0.1, 0.6))
                shown.append(connected(server))
            first, later = delays(server, camera, 300 + group)
            say(f"live, newest picture, key pictures {group // PICTURES_PER_SECOND} s apart",
                spread(shown))
            say("live, from the camera's sending to the watcher, first second", spread(first))
            say("live, the same from then on", spread(later))


def tell_watchers(options):
    clip = clips.plain(options.work, "1280x720", "2M", 50)
    for sound in ("yes", "no"):
        with contextlib.ExitStack() as stack:
            server = stack.enter_context(Server(
                options.work / "server-live", f"[camera A]\nurl = file:{clip}\nsound = {sound}\n",
                options.work / "live", program=options.server))
            server.await_live()
            used = []
            for watchers in (0, WATCHERS):
                for _ in range(watchers):
                    stack.enter_context(running("curl", "-s", "-o", "/dev/null",
                                                server.url("/flv/live?q=2"),
                                                stderr=subprocess.DEVNULL))
                time.sleep(SETTLE_SECONDS)
                before = server.cpu()
                time.sleep(WATCHED_SECONDS)
                used.append((server.cpu() - before) / WATCHED_SECONDS * 100)
        say(f"recording 720p alone, sound: {sound}", f"{used[0]:.2f} % of a core")
        say(f"{WATCHERS} watchers beside it, each",
            f"{(used[1] - used[0]) / WATCHERS:.3f} % of a core")


def run(options):
    tell_delays(options)
    tell_watchers(options)
