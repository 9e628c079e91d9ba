# SPDX-License-Identifier: MIT
"""Clips for cameras: a moving, noisy picture with AAC. Noise makes each picture unmistakable."""
import os
import pathlib
import subprocess

PICTURES_PER_SECOND = 25
PICTURE_MS = 1000 // PICTURES_PER_SECOND
CLIP_SECONDS = 20
NUMBER_CELLS = 9  # enough for each picture of a clip
NUMBER_HEIGHT = 32
SIMPLE = ("-preset", "ultrafast", "-bufsize", "1M", "-sc_threshold", "0")
# Where the picture changes all at once there are key pictures, too.
LIKE_A_CAMERA = ("-preset", "superfast", "-tune", "zerolatency", "-bufsize", "2M")


def cache():
    """The folder of clips that many runs share."""
    return pathlib.Path(os.environ.get("ZORVANE_CLIP_CACHE", ".")).absolute()


def number_strip():
    """Filters that put each picture's number at its top: in cells, the highest bit first."""
    return f",drawbox=w=iw:h={NUMBER_HEIGHT}:c=black:t=fill" + "".join(
        f",drawbox=x=iw*{cell}/{NUMBER_CELLS}:w=iw/{NUMBER_CELLS}:h={NUMBER_HEIGHT}:c=white:t=fill:"
        f"enable='mod(floor(n/{1 << (NUMBER_CELLS - 1 - cell)}),2)'"
        for cell in range(NUMBER_CELLS))


def read_number(pixels, width):
    """Of a picture of four bytes a pixel that begins with such a strip."""
    number = 0
    for cell in range(NUMBER_CELLS):
        x = width * (2 * cell + 1) // (2 * NUMBER_CELLS)
        number = 2 * number + (pixels[4 * (NUMBER_HEIGHT // 4 * width + x) + 1] > 127)
    return number


def make(path, size, rate, group, seconds=CLIP_SECONDS, numbered=False, reordered=0,
         encoder=SIMPLE):
    """Makes a clip once; its path. `group`: pictures from key picture to key picture, at most;
    `reordered`: how many of them in a row may be coded out of order."""
    if not path.exists():
        part = path.with_suffix(".part.mp4")
        subprocess.run(
            ["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
             f"testsrc2=s={size}:r={PICTURES_PER_SECOND},noise=alls=12:allf=t"
             f"{number_strip() * numbered}", "-f", "lavfi", "-i", "anoisesrc=r=16000:a=0.1", "-t",
             str(seconds), "-c:v", "libx264", *encoder, "-bf", str(reordered), "-pix_fmt",
             "yuv420p", "-g", str(group), "-b:v", rate, "-minrate", rate, "-maxrate", rate, "-c:a",
             "aac", "-b:a", "48k", part], check=True)
        os.rename(part, path)
    return path


def plain(folder, size, rate, group):
    """A clip named by what it is."""
    return make(folder / f"server-{size}-{rate}-{group}.mp4", size, rate, group)
