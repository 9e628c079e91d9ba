# SPDX-License-Identifier: MIT
"""The server is killed at random moments, and started again with a month of segments."""
import hashlib
import random
import statistics
import time

from trials import segments
from trials.cameras import Cameras
from trials.recording.judge import clip, lost, pictures_of
from trials.segments import DAY_MS, DAYS, SEGMENT_MS
from trials.server import Server

SERVED_WITHIN = 1.0  # seconds from the start
KILL_LOSES = 0.1  # seconds of what came last
CAMERAS = 8


def checksum(path):
    return hashlib.md5(path.read_bytes()).digest()


def run(folder, chosen):
    cameras = Cameras(clip(folder), [f"C{i}" for i in range(CAMERAS)])
    server = Server(folder, cameras.sections())
    first_ms = int(time.time() * 1000) // SEGMENT_MS * SEGMENT_MS - (DAYS + 1) * DAY_MS
    segments.make_month(server.archive, [f"Old {i}" for i in range(CAMERAS)], first_ms)
    server.start()
    server.end()  # the first start lays out certificates
    times, worst, finished, kept = [], 0, {}, 0
    for i in range(chosen.times):
        cameras.forget()
        begun = time.time()
        times.append(server.start())
        cameras.await_recorded()
        time.sleep(random.uniform(0, 3))
        until = time.monotonic() - KILL_LOSES
        server.kill()
        ended = time.time()
        time.sleep(0.3)  # until the cameras see it
        times.append(server.start())
        server.kill()
        for camera in cameras.names:
            new = [one for one in segments.files(server.archive, camera, "*+*.mkv")
                   if begun < segments.start_of(one) < ended]
            recorded = [picture for path in new for picture in pictures_of(path)]
            kept += len(recorded)
            worst = max(worst, lost(cameras.sent[camera], until, recorded, f"{camera}, kill {i}"))
            for path in new:
                finished[path] = checksum(path)
    changed = [path for path, old in finished.items() if checksum(path) != old]
    print(f"{chosen.times} kills: {kept} pictures kept, {worst:.2f} s lost of what came "
          f"{KILL_LOSES} s before or earlier; {len(changed)} of {len(finished)} finished files "
          f"changed; answers after {statistics.median(times):.2f} s, {max(times):.2f} s at most")
    return worst == 0 and not changed and max(times) <= SERVED_WITHIN
