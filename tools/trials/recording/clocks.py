# SPDX-License-Identifier: MIT
"""Clocks that are set, and days of 23 and 25 hours."""
import bisect
import datetime
import json
import pathlib
import sys
import time
import zoneinfo

from trials import segments
from trials.cameras import Cameras
from trials.recording.judge import clip, lost, pictures_of
from trials.server import Server
from trials.system import await_that

OFFSETS = ("+0", "+3600", "+0", "-3600", "+0")  # seconds, one after the other
ZONE = "Europe/Berlin"
CHANGES = ((3, 29, 23), (10, 25, 25))  # month, day and how many hours it has
YEAR = 2026
RECORDED_MINUTES = 50  # of each hour


def told(server, path, camera, since, until):
    """What it tells of that camera's archive, over the LAN's interface."""
    return json.loads(server.ask(f"/archive/{path}?startTime={int(since)}&endTime={int(until)}",
                                 camera))


def judged(archive, camera, sent, until, spans):
    """At how many times of the day there are records of the camera. Ends the trial when something
    is missing, told twice or not told."""
    if any(end > begin for (_, end), (begin, _) in zip(spans, spans[1:])):
        sys.exit(f"{camera}: records overlap: {spans}")
    files = sorted(segments.files(archive, camera), key=lambda one: one.stat().st_mtime_ns)
    recorded = [picture for path in files for picture in pictures_of(path)]
    missing = lost(sent, until, recorded, camera)
    due = bisect.bisect([moment for moment, _ in sent], until - 1)
    hidden = [moment for _, moment in recorded[:due]
              if not any(begin <= moment < end for begin, end in spans)]
    if hidden:
        sys.exit(f"{camera}: {len(hidden)} pictures are in no record of the list")
    if missing > 1:
        sys.exit(f"{camera}: {missing} s are missing")
    return len({round(segments.start_of(path) / 3600 * 2) for path in files})


def set_by_an_hour(folder, chosen):
    """Faked for the program alone; its steady clock goes on."""
    stamp = folder / "offset"
    stamp.write_text("+0")
    library = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"))
    cameras = Cameras(clip(folder), [f"C{i}" for i in range(4)])
    server = Server(folder, cameras.sections(), environment={
        "LD_PRELOAD": str(library), "FAKETIME_TIMESTAMP_FILE": str(stamp), "FAKETIME_NO_CACHE": "1",
        "FAKETIME_DONT_FAKE_MONOTONIC": "1", "DONT_FAKE_MONOTONIC": "1"})
    server.start()
    cameras.await_recorded()
    for offset in OFFSETS:
        stamp.write_text(offset)
        time.sleep(chosen.minutes * 60 / len(OFFSETS))
    until, now = time.monotonic(), time.time()
    lists = {camera: told(server, "list", number, now - 86400, now + 86400)
             for number, camera in enumerate(cameras.names, 1)}
    server.end()
    times = sum(judged(server.archive, camera, cameras.sent[camera], until,
                       [(one["startTime"], one["startTime"] + one["duration"]) for one in list])
                for camera, list in lists.items())
    print(f"clock set by an hour four times: nothing lost of {len(cameras.names)} cameras, "
          f"records at {times} times of the day; {sum(map(len, lists.values()))} records in the "
          "lists, none of which overlap, and no picture outside of them")
    return times >= 3 * len(cameras.names)


def begin_of(day, hour=0):
    return datetime.datetime(day.year, day.month, day.day, hour,
                             tzinfo=zoneinfo.ZoneInfo(ZONE)).timestamp()


def summer_time(folder, chosen):
    """Fifty minutes of each hour, around the days on which the clock is changed."""
    days = [(datetime.date(YEAR, month, day + offset), hours)
            for month, day, long in CHANGES for offset, hours in ((-1, 24), (0, long), (1, 24))]
    cameras = Cameras(clip(folder), ["C0"])
    server = Server(folder, cameras.sections(), environment={"TZ": ZONE})
    for day, _ in days:
        starts = (int(begin_of(day)) + 300 * k for k in range(26 * 12))
        segments.make_names(server.archive / "C0/main", [
            1000 * start for start in starts if start % 3600 < 60 * RECORDED_MINUTES], 300_000)
    server.start()
    of_days = [{one["date"]: one["recordsCount"] for one in told(
        server, "days", 1, begin_of(first), begin_of(last, 12))}
            for (first, _), (last, _) in (days[0:3:2], days[3:6:2])]
    good = True
    for i, (day, hours) in enumerate(days):
        begin, end = begin_of(day), begin_of(day + datetime.timedelta(days=1))
        starts = [one["startTime"] / 1000 for one in told(server, "list", 1, begin, end - 1)]
        noon = int(begin_of(day, 12))
        good &= (end - begin == 3600 * hours and of_days[i // 3].get(noon) == hours and
                 starts == [begin + 3600 * k for k in range(hours)])
        print(f"{day} in {ZONE}: {of_days[i // 3].get(noon)} records in the days, {len(starts)} in "
              f"the list, of {hours}")
    cameras.await_recorded()
    await_that(lambda: segments.files(server.archive, "C0", "*.part"), "nothing is recorded", 60)
    newest = segments.files(server.archive, "C0", "*.part")[-1]
    late = abs(segments.start_of(newest) - time.time())
    server.end()
    print(f"a name made there is {late:.1f} s from the present, read as UTC")
    return good and late < 60
