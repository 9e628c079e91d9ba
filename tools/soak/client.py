# SPDX-License-Identifier: MIT
"""The client program of a run: started as installed, and looked at through a plugin."""
import json
import os
import socket
import subprocess

import processes

START_SECONDS = 120
ANSWER_SECONDS = 60
PIECE_SECONDS = 2


def middle(thing):
    x, y, width, height = thing["place"]
    return x + width // 2, y + height // 2


class Client:
    """Knows the newest process that has come, also one that took another's place."""

    def __init__(self, folder, build, display, clock_file=None):
        self.folder = folder
        self.build = build
        self.run_folder = os.path.join(folder, "run")
        self.temporary = os.path.join(folder, "tmp")
        self.home = os.path.join(folder, "home")
        for each in (self.run_folder, self.temporary, self.home + "/.cache",
                     self.home + "/.config", folder + "/runtime"):
            os.makedirs(each, exist_ok=True)
        os.chmod(folder + "/runtime", 0o700)
        self.address = os.path.join(folder, "eyes")
        self.server = socket.socket(socket.AF_UNIX)
        if os.path.exists(self.address):
            os.unlink(self.address)
        self.server.bind(self.address)
        self.server.listen(16)
        self.stream, self.buffer = None, b""
        self.process = None  # the one started here
        self.pid = 0         # the one that runs
        self.pids = []
        self.environment = self.make_environment(display, clock_file)

    def make_environment(self, display, clock_file):
        environment = dict(os.environ)
        for name in ("http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY",
                     "ALL_PROXY", "WAYLAND_DISPLAY", "ZORVANE_KIOSK", "XDG_DATA_HOME"):
            environment.pop(name, None)
        environment.update(HOME=self.home, XDG_CACHE_HOME=self.home + "/.cache",
                           XDG_CONFIG_HOME=self.home + "/.config", TMPDIR=self.temporary,
                           XDG_RUNTIME_DIR=self.folder + "/runtime", DISPLAY=display,
                           QT_QPA_PLATFORM="xcb", SDL_AUDIODRIVER="dummy",
                           ZORVANE_EYES_SOCKET=self.address,
                           QT_QPA_GENERIC_PLUGINS="zorvane-eyes",
                           QT_PLUGIN_PATH=os.path.join(self.build, "tests/bin/plugins"))
        library = faketime_library() if clock_file else None
        if library:
            environment.update(LD_PRELOAD=library, FAKETIME_TIMESTAMP_FILE=clock_file,
                               DONT_FAKE_MONOTONIC="1", FAKETIME_CACHE_DURATION="1")
        return environment

    def remember(self, email, password, language="en"):
        """Settings of someone who is signed in."""
        with open(os.path.join(self.run_folder, "ZorvaneClient.ini"), "w") as file:
            file.write(f"[auth]\nemail={email}\npassword={password}\nsaveAuth=true\n\n"
                       f"[common]\nlanguage={language}\n")

    def forget_callers(self):
        """Those who came and were killed before anyone spoke to them."""
        self.server.settimeout(0)
        try:
            while True:
                self.server.accept()[0].close()
        except BlockingIOError:
            pass

    def start(self):
        self.forget_callers()
        with open(os.path.join(self.folder, "client.out"), "ab") as out:
            self.process = subprocess.Popen(
                [os.path.join(self.build, "bin/ZorvaneClient")], cwd=self.run_folder,
                env=self.environment, stdin=subprocess.DEVNULL, stdout=out, stderr=out,
                preexec_fn=processes.end_with_parent)
        self.accept(START_SECONDS)

    def accept(self, seconds):
        """Waits for the next process to come."""
        self.server.settimeout(PIECE_SECONDS)
        connection = None
        for _ in range(int(seconds / PIECE_SECONDS)):
            try:
                connection, _ = self.server.accept()
                break
            except TimeoutError:
                continue
        if not connection:
            raise TimeoutError("no client came")
        if self.stream:
            self.stream.close()
        connection.settimeout(PIECE_SECONDS)
        self.stream, self.buffer = connection, b""
        self.pid = json.loads(self.read_line())["pid"]
        self.pids.append(self.pid)

    def read_line(self):
        """Waits in pieces: a machine that holds everything up for a while takes one of them."""
        for _ in range(ANSWER_SECONDS // PIECE_SECONDS):
            while b"\n" not in self.buffer:
                try:
                    read = self.stream.recv(1 << 16)
                except TimeoutError:
                    break
                if not read:
                    raise ConnectionError("the client is gone")
                self.buffer += read
            else:
                line, self.buffer = self.buffer.split(b"\n", 1)
                return line
        raise TimeoutError(f"the client has not answered for {ANSWER_SECONDS} s")

    def ask(self, *request):
        self.stream.sendall(json.dumps(request).encode() + b"\n")
        return json.loads(self.read_line())

    def find(self, of_class="", name="", window=None):
        found = self.ask("find", of_class, name)["found"]
        return [each for each in found if window is None or each["window"] == window]

    def first(self, of_class="", name="", window=None):
        return next(iter(self.find(of_class, name, window)), None)

    def tiles(self):
        return self.ask("tiles")["found"]

    def windows(self):
        return self.ask("windows")["found"]

    def main_windows(self):
        return [each for each in self.windows() if each["class"] == "MainWindow"]

    def is_alive(self):
        one = processes.status(self.pid)
        return one is not None and one["state"] != "Z"

    def end(self):
        if self.stream:
            self.stream.close()
            self.stream = None
        for pid in self.pids[-3:]:
            one = processes.status(pid)
            here = processes.folder_of(pid) == os.path.realpath(self.run_folder)
            if one and here and one["name"].startswith("ZorvaneClient"):
                processes.send(pid, 9)
        if self.process:
            self.process.wait()
        self.server.close()


def faketime_library():
    for folder in ("/usr/lib/x86_64-linux-gnu", "/usr/lib/aarch64-linux-gnu", "/usr/lib"):
        path = folder + "/faketime/libfaketime.so.1"
        if os.path.exists(path):
            return path
    return None
