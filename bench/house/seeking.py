# SPDX-License-Identifier: MIT
"""How soon a moment of the archive is there: of 30 days of 8 cameras, which are recorded meanwhile,
beside an ffmpeg that looks for it in a list of what its own segmenter has written. No file that is
asked for is in the system's memory."""
import itertools
import pathlib
import random
import subprocess
import tempfile
import time

from house.parts import House
from house.table import Table
from trials import clips, flv, segments
from trials.clips import CLIP_SECONDS, PICTURES_PER_SECOND
from trials.player import PLAYER, first_shown
from trials.segments import DAYS
from trials.server import PROGRAM
from trials.system import forget, running

CAMERAS = 8
DAY, SEGMENT = segments.DAY_MS // 1000, segments.SEGMENT_MS // 1000  # seconds
STARTED_MS = 1000
FIRST_BYTE_MS = 20  # each time, as those below
SHOWN_MS = {2: 150, 10: 250}  # by how far key pictures are apart, in seconds
MAKE_SEGMENT = PROGRAM.parent.parent / "bench/bin/make_segment"
SEED = 8


def arrival(stream, chunked, begun, wanted):
    """Milliseconds until the first bytes, and until that picture."""
    first = None
    for tag in flv.tags(stream, chunked):
        first = first or tag.at
        if flv.is_picture(tag) and flv.tail(tag.body) == wanted:
            return (first - begun) * 1000, (tag.at - begun) * 1000
    raise RuntimeError("the picture never came")


class Footage:
    """Pictures that repeat, as the server and as ffmpeg's segmenter write them."""

    def __init__(self, folder, group):
        self.source = clips.plain(clips.cache(), "1920x1080", "4M", group * PICTURES_PER_SECOND)
        self.segment = folder / f"{group}-0.mkv"
        self.pictures = [flv.tail(tag.body) for tag in
                         filter(flv.is_picture, flv.tags_of(self.source))]
        subprocess.run(["ffmpeg", "-v", "error", "-stream_loop", "-1", "-i", self.source, "-t",
                        str(SEGMENT), "-c", "copy", "-f", "segment", "-segment_time",
                        str(2 * SEGMENT), folder / f"{group}-%d.mkv"], check=True)

    def write(self, path, start):
        path.unlink()
        subprocess.run([MAKE_SEGMENT, self.source, str(start * 1000), str(segments.LENGTH_MS),
                        path], check=True)

    def list_month(self, first, start):
        """ffmpeg's list of a month whose segment at `start` is there; the first one is opened,
        whatever is looked for."""
        lines = [f"file {self.segment.name if begin in (first, start) else 'missing.mkv'}\n"
                 f"duration {SEGMENT}\n" for begin in range(first, first + DAYS * DAY, SEGMENT)]
        path = self.segment.with_suffix(f".{start}.ffconcat")
        path.write_text("ffconcat version 1.0\n" + "".join(lines))
        return path

    def at(self, second):
        return self.pictures[second % CLIP_SECONDS * PICTURES_PER_SECOND]


class Place:
    """A camera's only segment with pictures in it, somewhere in the month."""

    def __init__(self, house, camera, footage, first, start):
        self.camera, self.footage, self.start = camera, footage, start
        self.path = house.archive / f"C{camera}" / "main" / segments.name_of(start * 1000)
        footage.write(self.path, start)
        self.list, self.offset = footage.list_month(first, start), start - first

    def url(self, second):
        return f"/flv/archive?q=2&speed=1&startTime={self.start + second}"

    def of_server(self, house, second):
        forget(self.path)
        begun = time.monotonic()
        with house.connect(self.url(second), self.camera + 1) as one:
            return arrival(one.makefile("rb"), True, begun, self.footage.at(second))

    def of_ffmpeg(self, second):
        forget(self.footage.segment)
        begun = time.monotonic()
        with running("ffmpeg", "-nostdin", "-v", "error", "-probesize", "100k", "-analyzeduration",
                     "0", "-ss", self.offset + second, "-f", "concat", "-i", self.list, "-c",
                     "copy", "-f", "flv", "-flvflags", "no_duration_filesize", "-flush_packets",
                     "1", "pipe:1", stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            return arrival(process.stdout, False, begun, self.footage.at(second))

    def in_player(self, house, second, below):
        forget(self.path)
        return first_shown(house.url(self.url(second), self.camera + 1), below)[0]


def measure(below, times):
    """How long the server's start took; and, by distance of key pictures, which each half of the
    cameras has, what server, ffmpeg and player took."""
    dice = random.Random(SEED)
    first = int(time.time()) // DAY * DAY - (DAYS + 1) * DAY
    small = clips.plain(clips.cache(), "640x360", "500k", 50)
    house = House(below / "house", [f"file:{small}"] * CAMERAS)
    segments.make_month(house.archive, [f"C{i}" for i in range(CAMERAS)], first * 1000)
    footage = {group: Footage(below, group) for group in SHOWN_MS}
    places = {group: [] for group in SHOWN_MS}
    for camera in range(CAMERAS):
        group = list(SHOWN_MS)[camera % len(SHOWN_MS)]
        start = first + dice.randrange(1, DAYS * DAY // SEGMENT) * SEGMENT
        places[group].append(Place(house, camera, footage[group], first, start))
    figures = {group: ([], [], []) for group in SHOWN_MS}
    begun = time.monotonic()
    with house:
        started = (time.monotonic() - begun) * 1000
        for turn, (group, some) in itertools.product(range(times), places.items()):
            for place in some:
                second = dice.randrange(SEGMENT - CLIP_SECONDS)
                ours, peer, player = figures[group]
                ours.append(place.of_server(house, second))
                peer.append(place.of_ffmpeg(second))
                if PLAYER.exists() and turn % 2 == 0:
                    player.append(place.in_player(house, second, below))
    return started, figures


def run(below, times=6):
    table = Table(f"Seeking: {DAYS} days of {CAMERAS} cameras, 1920x1080, 4 Mbit/s; "
                  f"{times * CAMERAS} moments, milliseconds", "ffmpeg")
    with tempfile.TemporaryDirectory(dir=below) as name:
        started, figures = measure(pathlib.Path(name), times)
    table.row("answers after its start", started, None, STARTED_MS)
    for group, (ours, peer, player) in figures.items():
        what = f"key pictures {group} s apart: "
        for i, text, limit in ((0, "first bytes", FIRST_BYTE_MS), (1, "picture asked for", None)):
            table.spread(what + text, [one[i] for one in ours], [one[i] for one in peer], limit)
        if player:
            table.spread(what + "first in the player", player, None, SHOWN_MS[group])
    return table.good
