# SPDX-License-Identifier: MIT
"""What an archive holds, beside what its cameras have sent."""
import bisect
import subprocess
import sys

from trials import clips, segments


def clip(folder):
    """What the cameras of these trials send."""
    return clips.make(folder / "clip.mp4", "1280x720", "4M", 50, seconds=10)


def pictures_of(path):
    """Checksum and moment in ms of each picture in a file."""
    start = segments.start_of(path) * 1000
    return [(checksum, round(start + at)) for checksum, at in segments.pictures_in(path)]


def lost(sent, until, recorded, what):
    """Seconds of what was sent before `until` that aren't recorded; none may be missing before."""
    have = [checksum for checksum, _ in recorded]
    if have != [checksum for _, checksum in sent[:len(have)]]:
        sys.exit(f"{what}: what is recorded isn't what was sent ({len(have)}, {len(sent)})")
    due = bisect.bisect([moment for moment, _ in sent], until)
    return 0 if len(have) >= due else until - sent[len(have)][0]


def longest_gap(archive, cameras):
    """The longest time in ms without a picture, in what is left."""
    longest = 0
    for camera in cameras:
        moments = []
        for path in segments.files(archive, camera):
            try:
                moments += [moment for _, moment in pictures_of(path)]
            except subprocess.CalledProcessError:
                if path.exists():
                    raise
        longest = max([longest] + [b - a for a, b in zip(moments, moments[1:])])
    return longest


def recorded_seconds(archive, camera):
    """How much time the segments' names cover."""
    total, end = 0, 0
    for path in segments.files(archive, camera, "*+*.mkv"):
        begin = segments.start_of(path)
        its_end = begin + segments.length_ms_of(path) / 1000
        total += max(its_end - max(begin, end), 0)
        end = max(end, its_end)
    return total
