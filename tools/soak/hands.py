# SPDX-License-Identifier: MIT
"""The user's hands: pointer and keys of the run's own X server."""
import os
import subprocess
import time

DRAG_STEPS = 8


class Hands:
    def __init__(self, display):
        self.environment = dict(os.environ, DISPLAY=display)

    def run(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def raise_window(self, window):
        self.run("windowactivate", window)

    def move(self, x, y):
        self.run("mousemove", x, y)

    def click(self, x, y, button=1):
        self.run("mousemove", x, y)
        time.sleep(0.05)
        self.run("click", button)

    def drag(self, start, end):
        """With moves on the way, as drags begin and are told of by moves."""
        self.run("mousemove", *start)
        self.run("mousedown", 1)
        for step in range(1, DRAG_STEPS + 1):
            self.run("mousemove", *[int(a + (b - a) * step / DRAG_STEPS)
                                    for a, b in zip(start, end)])
            time.sleep(0.04)
        time.sleep(0.2)
        self.run("mouseup", 1)

    def wheel(self, x, y, turns):
        self.run("mousemove", x, y, "click", "--repeat", abs(turns), 4 if turns > 0 else 5)

    def key(self, *names):
        self.run("key", *names)

    def type(self, text):
        self.run("type", "--delay", 20, text)
