# SPDX-License-Identifier: MIT
"""Which picture the client's player shows, by numbers in the pictures: of the moment asked for, at
all speeds, and nine players at once."""
import random
import shutil
import time

from trials import clips, flv, segments
from trials.clips import CLIP_SECONDS, PICTURE_MS, PICTURES_PER_SECOND
from trials.figures import say, spread
from trials.player import watch
from trials.segments import DAY_MS
from trials.server import Server
from trials.system import at_once

PICTURES = CLIP_SECONDS * PICTURES_PER_SECOND
PIECES = 3
MOMENTS = 12  # of each camera, beside those at the ends of segments
RECORDED_SECONDS = 65
SPEEDS, SPEEDS_AT_ONCE = (1, 2, 4, 8, 16, 32), (4, 8, 16)
SPEED_SECONDS, AT_ONCE_SECONDS = 4.0, 8.0


def numbered_clip(options, group, reordered=0):
    name = f"numbered-{group}-{reordered}.mp4"
    return clips.make(options.work / name, "1280x720", "2M", group, numbered=True,
                      reordered=reordered)


def numbers(shown):
    return [one for one in shown if one.number is not None]


class Numbered:
    """Segments without a gap of a camera that shows a clip of numbered pictures."""

    def __init__(self, options, archive, group, first_ms):
        self.group, self.first_ms = group, first_ms
        self.gap = f"key pictures {group // PICTURES_PER_SECOND} s apart"
        clip = numbered_clip(options, group)
        recorded = options.work / "numbered" / f"G{group}"
        if not recorded.exists():
            with Server(options.work / f"server-G{group}", f"[camera A]\nurl = file:{clip}\n",
                        recorded, program=options.server):
                time.sleep(RECORDED_SECONDS)
        source = max(recorded.rglob("*.mkv"), key=lambda path: path.stat().st_size)
        self.length_ms = segments.length_ms_of(source)
        for place in range(PIECES):
            segments.copy(source, archive / f"G{group}" / "main",
                          first_ms + place * self.length_ms)
        places = {flv.checksum(tag): place for place, tag in
                  enumerate(filter(flv.is_picture, flv.tags_of(clip)))}
        moments = {round(at): places.get(checksum)
                   for checksum, at in segments.pictures_in(source)}
        self.moments = sorted(moments)
        known = [(i - moments[at]) % PICTURES for i, at in enumerate(self.moments)
                 if moments[at] is not None]
        self.begin = known[0]
        assert len(known) > len(self.moments) * 0.9 and set(known) == {self.begin}

    def moment(self, number, near_ms):
        """Of the picture of that number, the moment nearest to the one given."""
        return min((self.first_ms + place * self.length_ms + at for place in range(PIECES)
                    for at in self.moments[(number + self.begin) % PICTURES::PICTURES]),
                   key=lambda moment: abs(moment - near_ms))


def tell_moments(camera, play):
    first, since, after, off, never, begin = [], [], [], [], 0, camera.first_ms // 1000
    half_ms = camera.group * PICTURE_MS // 2
    ends = [begin + place * camera.length_ms // 1000 for place in range(1, PIECES)]
    moments = [random.randint(begin, begin + PIECES * camera.length_ms // 1000 - 5)
               for _ in range(MOMENTS)] + [end + later for end in ends for later in (0, 1)]
    for start in moments:
        shown = numbers(play(start, 1, 1.0))
        since.append(shown[0].at)
        first.append(start * 1000 - camera.moment(shown[0].number, start * 1000 - half_ms))
        offs = [(one.at - shown[0].at, camera.moment(one.number, start * 1000) -
                 start * 1000 - (one.at - shown[0].at)) for one in shown]
        exact = next((at for at, late in offs if abs(late) <= PICTURE_MS), None)
        if exact is None:
            never += 1
            continue
        after.append(exact)
        off.extend(abs(late) for at, late in offs if at >= exact)
    say(f"first picture shown, {camera.gap}, after the player's start", spread(since))
    say("it is before the moment", spread(first))
    say("within a picture of the moment, after that one",
        spread(after) + (f"; not within a second at {never} of {len(moments)}" if never else ""))
    say("off it from then on", spread(off))


def tell_speeds(camera, play):
    start = camera.first_ms // 1000 + 1
    for speed in SPEEDS:
        shown = numbers(play(start, speed, SPEED_SECONDS))
        apart = [after.at - before.at for before, after in zip(shown[2:], shown[3:])]
        offs = sorted(camera.moment(one.number, start * 1000 + (one.at - shown[1].at) * speed) -
                      start * 1000 - (one.at - shown[1].at) * speed for one in shown[2:]
                      # Segments begin with the same numbers.
                      if one.at * speed < camera.length_ms - 10_000)
        middle = offs[len(offs) // 2]
        say(f"{speed}x, {camera.gap}",
            f"{len(shown) / SPEED_SECONDS:.1f} pictures/s, {max(apart):.0f} ms apart at most, "
            f"{max(abs(one - middle) for one in offs) / speed:.0f} ms off their time")


def tell_nine(first_ms, play):
    for speed in SPEEDS_AT_ONCE:
        tiles = at_once(*(lambda tile=tile: play(1 + tile % 3, first_ms // 1000 + 11 + tile % 2,
                                                 speed, AT_ONCE_SECONDS) for tile in range(9)))
        spreads = []
        for at in range(2000, int(AT_ONCE_SECONDS * 1000), 50):
            told = [max((one.told for one in tile if one.at <= at), default=0) * speed +
                    place % 2 * 1000 for place, tile in enumerate(tiles)]
            spreads.append((max(told) - min(told)) / 1000)
        say(f"{speed}x, nine at once, key pictures 1, 2 and 10 s apart: clocks apart",
            spread(spreads, "s"))


def run(options):
    archive = options.work / "exact"
    shutil.rmtree(archive, ignore_errors=True)
    first_ms = int(time.time()) * 1000 // DAY_MS * DAY_MS - DAY_MS // 2
    cameras = [Numbered(options, archive, group, first_ms) for group in (25, 50, 250)]
    clip = clips.plain(options.work, "640x360", "500k", 50)
    sections = "".join(f"[camera G{one.group}]\nurl = file:{clip}\n" for one in cameras)
    with Server(options.work / "server-exact", sections, archive,
                program=options.server) as server:

        def play(camera, start, speed, seconds):
            return watch(server.url(f"/flv/archive?q=2&speed={speed}&startTime={start}", camera),
                         seconds, options.work, options.player)

        for number, camera in enumerate(cameras, 1):
            tell_moments(camera, lambda *what: play(number, *what))
            tell_speeds(camera, lambda *what: play(number, *what))
        tell_nine(first_ms, play)
