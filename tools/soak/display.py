# SPDX-License-Identifier: MIT
"""The X server of a run."""
import itertools
import os
import subprocess

import processes

OUTPUT = "screen"  # as Xvfb calls it
# Servers that look for a free number begin at 0; one that ends may take the socket of another
# with it that got its number meanwhile. A run of hours stays out of their way.
DISPLAY_NUMBERS = itertools.count(1000 + os.getpid() % 20000)


def start_display(size, log):
    """Xvfb on a number of its own, with a window manager; both processes and the display."""
    display = f":{next(DISPLAY_NUMBERS)}"
    reader, writer = os.pipe()
    server = subprocess.Popen(["Xvfb", display, "-displayfd", str(writer), "-screen", "0",
                               size + "x24", "-nolisten", "tcp", "-noreset"], pass_fds=[writer],
                              stdout=log, stderr=log, preexec_fn=processes.end_with_parent)
    os.close(writer)
    with os.fdopen(reader) as pipe:
        if not pipe.readline().strip():
            raise RuntimeError("Xvfb did not start")
    manager = subprocess.Popen(["openbox"], env=dict(os.environ, DISPLAY=display), stdout=log,
                               stderr=log, preexec_fn=processes.end_with_parent)
    return server, manager, display


def add_modes(display, sizes):
    """Xvfb has but the mode that it began with: those of other sizes, for `set_size`."""
    for size in sizes:
        width, height = size.split("x")
        xrandr(display, "--newmode", size, "0", width, "0", "0", width, height, "0", "0", height)
        xrandr(display, "--addmode", OUTPUT, size)


def set_size(display, size):
    xrandr(display, "--output", OUTPUT, "--mode", size)


def xrandr(display, *words):
    done = subprocess.run(["xrandr", *words], env=dict(os.environ, DISPLAY=display),
                          capture_output=True, text=True)
    if done.returncode:
        raise RuntimeError(f"xrandr {' '.join(words)}: {done.stderr}")
