# SPDX-License-Identifier: MIT
"""zorvane-server as trials and benchmarks start and ask it."""
import contextlib
import os
import pathlib
import socket
import subprocess
import time

from trials import flv
from trials.system import await_that, cpu_seconds, free_port, stop

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
PROGRAM = pathlib.Path(os.environ.get("ZORVANE_SERVER",
                                      PROJECT / "build/release/bin/zorvane-server"))
START_SECONDS = 60  # a busy machine's start with a month of segments is far from it
START_LOOK_SECONDS = 0.005
NOTHING_LEFT_FREE = "keep_free = 0%"


class Server:
    """The server with the cameras of these sections; configuration, state and log are in a folder
    of its own. `rules`: lines about the archive. Runs within a block, or from start() on."""

    def __init__(self, folder, sections, archive=None, rules=NOTHING_LEFT_FREE, environment=None,
                 program=PROGRAM):
        self.folder, self.port = pathlib.Path(folder).absolute(), free_port()
        self.archive = pathlib.Path(archive or self.folder / "archive")
        self.program = program
        self.environment = {**os.environ, **(environment or {})}
        self.log, self.file = self.folder / "server.log", self.folder / "conf"
        for one in (self.folder, self.archive.parent):
            one.mkdir(parents=True, exist_ok=True)
        self.file.write_text(f"[service]\nstate = {self.folder}/state\nport = {free_port()}\n"
                             f"cameras_port = {self.port}\n"
                             f"[archive]\nfolder = {self.archive}\n{rules}\n{sections}")
        subprocess.run([program, "prepare", self.archive], check=True)

    def start(self):
        """Seconds until it answers."""
        begun = time.monotonic()
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen([self.program, "--config", self.file], stderr=log,
                                            env=self.environment)
        while not self._answers():
            if self.process.poll() is not None or time.monotonic() > begun + START_SECONDS:
                stop(self.process)
                raise RuntimeError("the server doesn't answer: " + self.log.read_text()[-2000:])
            time.sleep(START_LOOK_SECONDS)
        return time.monotonic() - begun

    def _answers(self):
        with contextlib.suppress(OSError):
            self.password = (self.folder / "state/password").read_text().strip()
            with socket.create_connection(("127.0.0.1", self.port), START_SECONDS) as one:
                one.sendall(b"GET /nothing HTTP/1.0\r\n\r\n")
                return one.recv(1) != b""
        return False

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        stop(self.process)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def end(self):
        self.process.terminate()
        if self.process.wait() != 0:
            raise RuntimeError("the server did not end well")

    def url(self, path, camera=1):
        """`path` has a question mark in it."""
        return (f"http://127.0.0.1:{self.port}{path}&server=1&camera={camera}"
                f"&sessionId={self.password}")

    def connect(self, path, camera=1):
        one = socket.create_connection(("127.0.0.1", self.port))
        target = self.url(path, camera).split(str(self.port), 1)[1]
        one.sendall(f"GET {target} HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n".encode())
        return one

    def ask(self, path, camera=1):
        with self.connect(path, camera) as one:
            return b"".join(iter(lambda: one.recv(65536), b"")).split(b"\r\n\r\n", 1)[1]

    def tags(self, path, camera=1):
        """The tags of a stream as they arrive."""
        with self.connect(path, camera) as one, one.makefile("rb") as stream:
            yield from flv.tags(stream, True)

    def pictures(self, path, camera=1):
        return filter(flv.is_picture, self.tags(path, camera))

    def await_live(self, camera=1):
        def is_live():
            with self.connect("/flv/live?q=2", camera) as one:
                return len(one.makefile("rb").read(1024)) == 1024

        await_that(is_live, "the server has no pictures")

    def cpu(self):
        return cpu_seconds(self.process)

    def bytes_read(self):
        lines = pathlib.Path(f"/proc/{self.process.pid}/io").read_text().split()
        return int(lines[1])
