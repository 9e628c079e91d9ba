#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Stands where the launcher looks for the client: notes how it was started, listens to the pipe
when told, and does what is written into its folder of commands ($STAND_IN)."""
import json, os, pathlib, subprocess, sys, time

notes = pathlib.Path(os.environ["STAND_IN"])
start = notes / f"start-{len(list(notes.glob('start-*')))}"
umask = os.umask(0)
os.umask(umask)
text = json.dumps({"pid": os.getpid(), "folder": os.getcwd(), "umask": umask,
                   "arguments": sys.argv[1:], "environment": dict(os.environ)})
start.with_name("draft").write_text(text)
start.with_name("draft").rename(start)


def told(command):
    try:
        (notes / command).unlink()
        return True
    except FileNotFoundError:
        return False


pipe = None
while True:
    if pipe is None and (notes / "listen").exists():
        pipe = os.open(os.environ["ZORVANE_RAISE"], os.O_RDWR | os.O_NONBLOCK)
    try:
        asked = os.read(pipe, 100) if pipe is not None else b""
    except BlockingIOError:
        asked = b""
    if asked:
        with open(notes / "asked", "ab") as file:
            file.write(asked)
    if told("open-page"):
        subprocess.Popen(["xdg-open", "https://page.example/"], close_fds=False)
    if told("restart"):
        subprocess.Popen([sys.executable] + sys.argv, close_fds=False, start_new_session=True,
                         stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        sys.exit(0)
    if told("end"):
        sys.exit(7)
    time.sleep(0.005)
