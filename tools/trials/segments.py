# SPDX-License-Identifier: MIT
"""Segments of an archive: their names, which tell when they are, and the pictures in them."""
import datetime
import struct
import subprocess

UTC = datetime.timezone.utc
DAYS, DAY_MS, SEGMENT_MS = 30, 86_400_000, 300_000  # of a month that is made up
LENGTH_MS = SEGMENT_MS - 40
KINDS = ("main", "sub")
EPOCH_2001_MS = 978_307_200_000
DATE_ELEMENT = b"\x44\x61\x88"
STAMP_LETTERS = len("2001-02-03T04-05-06.789Z")


def name_of(start_ms, length_ms=LENGTH_MS):
    """Day and name, below the folder of the camera's stream."""
    start = datetime.datetime.fromtimestamp(start_ms // 1000, UTC)
    return f"{start:%Y-%m-%d}/{start:%Y-%m-%dT%H-%M-%S}.{start_ms % 1000:03}Z+{length_ms}.mkv"


def start_of(path):
    """In seconds."""
    return datetime.datetime.strptime(path.name[:STAMP_LETTERS], "%Y-%m-%dT%H-%M-%S.%fZ").replace(
        tzinfo=UTC).timestamp()


def length_ms_of(path):
    return int(path.stem.split("+")[1])


def files(archive, camera, pattern="*", kind="main"):
    return sorted((archive / camera / kind).glob(f"*/{pattern}"))


def make_names(folder, starts_ms, length_ms=LENGTH_MS):
    """Segments of nothing: what they hold isn't looked at by a start."""
    for start_ms in starts_ms:
        path = folder / name_of(start_ms, length_ms)
        if not path.parent.exists():
            path.parent.mkdir(parents=True)
        path.touch(0o600)


def make_month(archive, cameras, first_ms):
    """Names of all segments of 30 days, main and sub."""
    for camera in cameras:
        for kind in KINDS:
            make_names(archive / camera / kind,
                       range(first_ms, first_ms + DAYS * DAY_MS, SEGMENT_MS))


def copy(source, folder, start_ms, length_ms=None):
    """Puts a segment at another time. Its file."""
    data, path = source.read_bytes(), folder / name_of(start_ms, length_ms or length_ms_of(source))
    path.parent.mkdir(parents=True, exist_ok=True)
    at = data.index(DATE_ELEMENT) + len(DATE_ELEMENT)
    date = struct.pack(">q", (start_ms - EPOCH_2001_MS) * 1_000_000)
    path.write_bytes(data[:at] + date + data[at + len(date):])
    return path


def pictures_in(path):
    """Checksum and moment of each picture in a file, in milliseconds since it begins."""
    out = subprocess.run(
        ["ffprobe", "-v", "error", "-select_streams", "v", "-show_data_hash", "md5",
         "-show_entries", "packet=pts_time,data_hash", "-of", "csv=p=0", path],
        capture_output=True, text=True, check=True).stdout
    rows = [line.split(",") for line in out.split()]
    return [(row[1].split(":")[1], float(row[0]) * 1000) for row in rows]
