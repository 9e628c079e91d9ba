# SPDX-License-Identifier: MIT
"""The tags of FLV streams: read as they arrive, out of clips, and written."""
import collections
import hashlib
import io
import struct
import subprocess
import time

SOUND, PICTURE, SCRIPT = 8, 9, 18
SETUP, MEDIA = 0, 1
HEADER = b"FLV\x01\x05\0\0\0\x09\0\0\0\0"
TAG_HEADER_BYTES, TAG_BYTES = 11, 15  # of a tag without its body
MEDIA_HEADER_BYTES = 5
TAIL_BYTES = 32

Tag = collections.namedtuple("Tag", "at kind stamp body")  # when it was read, its moment in ms


def is_setup(tag):
    return tag.kind == SCRIPT or tag.body[1] == SETUP


def is_media(tag):
    return tag.kind != SCRIPT and tag.body[1] == MEDIA


def is_picture(tag):
    return tag.kind == PICTURE and tag.body[1] == MEDIA


def checksum(tag):
    """Of a picture, as ffprobe tells it of a file that has the same picture."""
    return hashlib.md5(tag.body[MEDIA_HEADER_BYTES:]).hexdigest()


def tail(data):
    """A picture ends in the same way however its units are packed; noise makes it unmistakable."""
    return bytes(data[-TAIL_BYTES:]).hex()


def written(kind, stamp, body):
    head = struct.pack(">B", kind) + len(body).to_bytes(3, "big")
    head += (stamp & 0xffffff).to_bytes(3, "big") + bytes([stamp >> 24]) + bytes(3)
    return head + body + struct.pack(">I", len(head) + len(body))


def tags(stream, chunked):
    """The tags of a stream as they arrive: over HTTP in chunks, or as they are."""
    while chunked and stream.readline().strip():
        pass
    data = bytearray()

    def need(size):
        while len(data) < size:
            if chunked:
                more = stream.read(int(stream.readline() or b"0", 16))
                stream.readline()
            else:
                more = stream.read1(1 << 16)
            if not more:
                return False
            data.extend(more)
        return True

    if not need(len(HEADER)):
        return
    del data[:len(HEADER)]
    while need(TAG_HEADER_BYTES):
        size = int.from_bytes(data[1:4], "big")
        if not need(TAG_BYTES + size):
            return
        stamp = int.from_bytes(data[4:7], "big") | data[7] << 24
        body = bytes(data[TAG_HEADER_BYTES:TAG_HEADER_BYTES + size])
        yield Tag(time.monotonic(), data[0], stamp, body)
        del data[:TAG_BYTES + size]


def pictures(stream, chunked):
    return filter(is_picture, tags(stream, chunked))


def tags_of(clip):
    """All tags of a file of any kind."""
    out = subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-i", clip, "-c", "copy", "-f",
                          "flv", "-flvflags", "no_duration_filesize", "pipe:1"],
                         stdout=subprocess.PIPE, check=True).stdout
    return list(tags(io.BytesIO(out), False))
