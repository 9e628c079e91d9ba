# SPDX-License-Identifier: MIT
"""A month of eight cameras, of which a server is asked that has just started."""
import itertools
import json
import shutil
import time

from trials import clips, flv, segments
from trials.figures import say, spread
from trials.player import first_shown
from trials.segments import DAY_MS, DAYS, LENGTH_MS, SEGMENT_MS
from trials.server import Server
from trials.system import at_once, forget

CAMERAS = 8
REAL_DAYS = 6  # the first ones, whose noons have pictures
WATCHED_SECONDS = 5.0


def recorded(options):
    """Camera and kind of stream, and a segment of five minutes of it: key pictures are 2 s apart in
    both streams of the first camera and 10 s in the second one's."""
    archive = options.work / "recorded"
    if not archive.exists():
        main, far = (clips.plain(options.work, "1920x1080", "4M", group) for group in (50, 250))
        sub = clips.plain(options.work, "640x360", "500k", 50)
        with Server(options.work / "server-recorded", f"[camera A]\nurl = file:{main}\n"
                    f"sub = file:{sub}\n[camera B]\nurl = file:{far}\n", archive,
                    program=options.server):
            time.sleep(2 * SEGMENT_MS / 1000 + 30)
    return [(camera, kind, max(segments.files(archive, name, "*.mkv", kind),
                               key=lambda path: path.stat().st_size))
            for camera, name, kind in ((0, "A", "main"), (0, "A", "sub"), (1, "B", "main"))]


def make_month(options, archive, first_ms):
    """Names for all segments, most of them of nothing. The noons of the first days of which
    `recorded()` has something are real; their moments, and the files by camera."""
    segments.make_month(archive, [f"C{i}" for i in range(CAMERAS)], first_ms)
    real, files = [first_ms + i * DAY_MS + DAY_MS // 2 for i in range(REAL_DAYS)], {}
    for (camera, kind, source), start_ms in itertools.product(recorded(options), real):
        folder = archive / f"C{camera}" / kind
        (folder / segments.name_of(start_ms, LENGTH_MS)).unlink()
        files.setdefault(camera, []).append(segments.copy(source, folder, start_ms))
    return real, files


def tell_lists(server, first_ms):
    for what, days, path in (("list of a day", 1, "list"), ("days of a month", DAYS, "days")):
        span = f"startTime={first_ms // 1000}&endTime={first_ms // 1000 + days * 86400 - 1}"
        times = []
        for camera in range(CAMERAS):
            before = time.monotonic()
            reply = server.ask(f"/archive/{path}?{span}", camera + 1)
            times.append((time.monotonic() - before) * 1000)
            assert json.loads(reply)
        say(what + ", each camera once", spread(times))


def tell_player(options, server, real):
    for camera, group in ((1, 2), (2, 10)):
        times = [first_shown(server.url("/flv/archive?q=2&speed=1&startTime="
                                        f"{start_ms // 1000 + 151 + group // 2}", camera),
                             options.work, options.player) for start_ms in real]
        say(f"first picture in the player, key pictures {group} s apart",
            f"{spread([one for one, _ in times])}; of a core {spread([one for _, one in times])}")


def tell_wire(server, real, files):
    for path in files:
        forget(path)
    first_byte, first_picture = [], []
    for start_ms in real:
        before, last = time.monotonic(), None
        for tag in server.tags(f"/flv/archive?q=2&speed=1&startTime={start_ms // 1000 + 151}"):
            if last is None:
                first_byte.append((tag.at - before) * 1000)
            if flv.is_picture(tag) and tag.stamp > 0:
                break
            last = tag.at
        first_picture.append((last - before) * 1000)
    say("first bytes, file not in memory", spread(first_byte))
    say("all up to the picture asked for (key pictures 2 s apart)", spread(first_picture))


def use_of(server, seconds):
    """Bytes that it reads and seconds that it uses a core, each second."""
    read, used = server.bytes_read(), server.cpu()
    time.sleep(seconds)
    return (server.bytes_read() - read) / seconds, (server.cpu() - used) / seconds


def tell_speeds(server, start_ms, moments, idle):
    """`moments`: of the segment there, by checksum. `idle`: the server's use without watchers."""
    for speed, quality, tiles in ((32, 0, 1), (32, 2, 1), (1, 2, 9), (2, 2, 9), (4, 2, 9),
                                  (8, 2, 9), (16, 2, 9), (32, 2, 9)):
        path = f"/flv/archive?q={quality}&speed={speed}&startTime={start_ms // 1000 + 10}"

        def watch():
            """How many pictures came, and how far each was from its moment."""
            count, apart, end = 0, [], time.monotonic() + WATCHED_SECONDS
            for tag in server.pictures(path):
                count += tag.stamp > 0
                if tag.stamp > 0 and quality == 2:
                    wanted = start_ms % 1000 + 10_000 + tag.stamp * speed
                    apart.append(min(abs(at - wanted) for at in moments[flv.checksum(tag)]))
                if tag.at > end:
                    break
            return count, apart

        read, used, before = server.bytes_read(), server.cpu(), time.monotonic()
        seen = at_once(*[watch] * tiles)
        seconds = time.monotonic() - before
        rate = ((server.bytes_read() - read) / seconds - idle[0]) / tiles / 1e6
        cpu = ((server.cpu() - used) / seconds - idle[1]) / tiles * 100
        apart = [one for _, some in seen for one in some]
        say(f"{speed}x, quality {quality}, {tiles} at once",
            f"{min(count for count, _ in seen) / seconds:.1f} pictures/s, {rate:.2f} MB/s read, "
            f"{cpu:.2f} % each" + (f", {max(apart):.0f} ms from their moments at most"
                                   if apart else ""))


def run(options):
    archive = options.work / "month"
    shutil.rmtree(archive, ignore_errors=True)
    first_ms = int(time.time() * 1000) // DAY_MS * DAY_MS - (DAYS + 1) * DAY_MS
    real, files = make_month(options, archive, first_ms)
    moments = {}
    for checksum, at in segments.pictures_in(files[0][0]):
        moments.setdefault(checksum, []).append(at)  # the clip is played over and over
    for path in itertools.chain(*files.values()):
        forget(path)
    clip = clips.plain(options.work, "640x360", "500k", 50)
    sections = "".join(f"[camera C{i}]\nurl = file:{clip}\n" for i in range(CAMERAS))
    server = Server(options.work / "server-month", sections, archive, program=options.server)
    begun = time.monotonic()
    with server:
        say("answers after its start", f"{(time.monotonic() - begun) * 1000:.0f} ms")
        tell_lists(server, first_ms)
        tell_player(options, server, real)
        time.sleep(10)  # the start's work is over by then
        idle = use_of(server, 10)
        tell_wire(server, real, files[0])
        tell_speeds(server, real[0], moments, idle)
