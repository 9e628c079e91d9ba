#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The launcher as a user runs it, each case in a home of its own, with a stand-in for the client."""
import json, os, pathlib, shutil, signal, stat, subprocess, time, unittest

source = pathlib.Path(__file__).resolve().parents[2] / "packaging"
usage = "Usage: zorvane-client [--folder DIR | --new] [--kiosk LAYOUT]\n"
patience = 60
forever_room = "9999999"


def wait_for(what, condition):
    deadline = time.monotonic() + patience
    while not (result := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"no {what} within {patience} s")
        time.sleep(0.005)
    return result


def write_program(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)
    path.chmod(0o755)


class LauncherTest(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path.cwd() / self.id().rsplit(".", 1)[1]
        self.home = self.root / "home"
        self.notes = self.root / "notes"
        self.tmp = self.root / "tmp"
        self.runtime = self.root / "runtime"
        self.etc = self.root / "etc/zorvane-client"
        for folder in (self.home, self.notes, self.tmp, self.runtime, self.etc):
            folder.mkdir(parents=True)
        text = (source / "zorvane-client.in").read_text()
        for old, new in {"@CMAKE_INSTALL_FULL_SYSCONFDIR@": str(self.etc.parent),
                         "@PROJECT_VERSION@": "1.2.3",
                         "\nanswer_seconds=10\n": "\nanswer_seconds=1\n"}.items():
            self.assertIn(old, text)
            text = text.replace(old, new)
        self.launcher = self.root / "bin/zorvane-client"
        write_program(self.launcher, text)
        programs = self.root / "lib/zorvane-client"
        (programs / "desktop").mkdir(parents=True)
        shutil.copy(source / "xdg-open", programs / "desktop")
        shutil.copy(pathlib.Path(__file__).with_name("stand_in.py"), programs / "ZorvaneClient")
        # What the test says of memory and its room, not this machine.
        self.memory = self.root / "in-memory"
        for name, place in {"stat": "${@: -1}", "df": "${@: -1}"}.items():
            write_program(self.root / "path" / name, f"""#!/bin/bash
                room=$(grep -F "{place}=" "{self.memory}") && room=${{room##*=}}
                case {name}$room in stat) echo ext2/ext3 ;; stat*) echo tmpfs ;;
                *) printf 'Avail\\n%s\\n' "${{room:-{forever_room}}}" ;; esac
                """)
        self.in_memory({self.runtime: forever_room})
        self.environment = {"HOME": str(self.home), "STAND_IN": str(self.notes),
                            "PATH": f"{self.root / 'path'}:{os.environ['PATH']}",
                            "TMPDIR": str(self.tmp), "XDG_RUNTIME_DIR": str(self.runtime)}
        self.tell("listen")

    def tearDown(self):
        for client in self.starts():
            try:
                os.kill(client["pid"], signal.SIGKILL)
            except ProcessLookupError:
                continue
        for client in self.starts():
            wait_for("end of the temporary folder",
                     lambda: not os.path.exists(client["environment"]["TMPDIR"]))

    def in_memory(self, room):
        self.memory.write_text("".join(f"{place}={kib}\n" for place, kib in room.items()))

    def tell(self, command):
        (self.notes / command).touch()

    def starts(self):
        return [json.loads(file.read_text()) for file in sorted(self.notes.glob("start-*"))]

    def launch(self, *arguments, **more):
        return subprocess.Popen([self.launcher, *arguments], env=self.environment, cwd=self.root,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **more)

    def run_client(self, *arguments):
        """The client that comes of it, once it runs."""
        before = len(self.starts())
        process = self.launch(*arguments)
        self.addCleanup(lambda: process.communicate(timeout=patience))
        started = wait_for("start",
                           lambda: self.starts()[before:] or process.poll() is not None)
        self.assertIsInstance(started, list, "the launcher ended")
        return process, started[0]

    def finish(self, process):
        output, errors = process.communicate(timeout=patience)
        return process.returncode, output, errors

    def gone(self, client):
        wait_for("end of the temporary folder",
                 lambda: not os.path.exists(client["environment"]["TMPDIR"]))

    def test_what_it_answers_at_once(self):
        for arguments, status, output, errors in (
                (["--version"], 0, "zorvane-client 1.2.3\n", ""),
                (["--help"], 0, usage, ""),
                (["--folder"], 2, "", usage),
                (["--folder", ""], 2, "", usage),
                (["--kiosk"], 2, "", usage),
                (["--new", "--folder", "x"], 2, "", usage),
                (["--folder", "x", "--new"], 2, "", usage),
                (["--what"], 2, "", usage),
                (["x"], 2, "", usage),
                (["--folder", "in-memory"], 1, "", "zorvane-client: cannot use the folder")):
            with self.subTest(arguments):
                result = self.finish(self.launch(*arguments))
                self.assertEqual((status, result[1][:len(output)]), (result[0], output))
                self.assertIn(errors, result[2])
        self.assertEqual(self.starts(), [])
        self.assertEqual(list(self.home.iterdir()), [])

    def test_folder(self):
        other = self.root / "other"
        shared = self.root / "shared"
        shared.mkdir(mode=0o755)
        usual = self.home / ".local/share/zorvane-client"
        for arguments, data_home, folder, mode in (
                ([], None, usual, 0o700),
                ([], "", usual, 0o700),
                ([], "not/absolute", usual, 0o700),
                ([], str(other), other / "zorvane-client", 0o700),
                (["--folder", "a b/c"], None, self.root / "a b/c", 0o700),
                (["--folder", str(shared)], None, shared, 0o755)):
            with self.subTest(arguments=arguments, data_home=data_home):
                self.environment.pop("XDG_DATA_HOME", None)
                if data_home is not None:
                    self.environment["XDG_DATA_HOME"] = data_home
                process, client = self.run_client(*arguments)
                self.assertEqual(client["folder"], str(folder))
                self.assertEqual(stat.S_IMODE(folder.stat().st_mode), mode)
                self.assertEqual(client["arguments"], [])
                self.assertEqual(client["umask"], os.umask(client["umask"]))
                self.assertTrue((self.home / ".cache").is_dir())
                self.assertNotIn("ZORVANE_KIOSK", client["environment"])
                self.tell("end")
                self.assertEqual(self.finish(process), (7, "", ""))
                self.gone(client)
                if mode == 0o700:
                    folder.chmod(0o755)  # by somebody; the next row sees it closed again

    def test_kiosk(self):
        _, client = self.run_client("--kiosk", "Front gate")
        self.assertEqual(client["environment"]["ZORVANE_KIOSK"], "Front gate")

    def test_temporary_folder(self):
        enough, little = 36 * 12 * 1024, 36 * 12 * 1024 - 1
        shm = pathlib.Path("/dev/shm")
        for room, place in (({self.runtime: enough}, self.runtime),
                            ({self.runtime: little, shm: enough}, shm),
                            ({shm: enough}, shm),
                            ({self.runtime: little, shm: little}, self.tmp),
                            ({}, self.tmp)):
            with self.subTest(room):
                self.in_memory(room)
                process, client = self.run_client()
                folder = pathlib.Path(client["environment"]["TMPDIR"])
                self.assertEqual(folder.parent, place)
                self.assertEqual(stat.S_IMODE(folder.stat().st_mode), 0o700)
                (folder / "zorvane-player-0").write_text("a picture")
                self.tell("end")
                self.finish(process)
                self.gone(client)
        self.assertEqual([*self.runtime.iterdir(), *self.tmp.iterdir()], [])

    def test_ends_of_all_kinds(self):
        for how in (signal.SIGKILL, signal.SIGSEGV, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(how):
                process, client = self.run_client()
                os.kill(client["pid"], how)
                self.finish(process)
                self.gone(client)
                self.assertEqual(self.starts()[-1], client)

    def test_restarted_client_keeps_its_folders(self):
        process, client = self.run_client()
        self.tell("restart")
        self.assertEqual(self.finish(process)[0], 0)
        again = wait_for("restart", lambda: self.starts()[1:])[0]
        self.assertEqual(self.finish(self.launch())[0], 0)
        wait_for("question", (self.notes / "asked").exists)
        self.assertEqual(len(self.starts()), 2)
        self.assertTrue(os.path.isdir(client["environment"]["TMPDIR"]))
        os.kill(again["pid"], signal.SIGKILL)
        self.gone(client)

    def test_second_start_asks_the_first(self):
        self.run_client()
        for count in (1, 2):
            self.assertEqual(self.finish(self.launch("--kiosk", "Gate")), (0, "", ""))
            wait_for("question", lambda: (self.notes / "asked").exists()
                     and len((self.notes / "asked").read_bytes()) == count)
        self.assertEqual(len(self.starts()), 1)
        # Another folder is another's.
        self.run_client("--folder", "b")
        self.assertEqual(self.finish(self.launch("--folder", "./b/"))[0], 0)
        self.assertEqual(len(self.starts()), 2)

    def test_second_start_waits_for_the_first_to_listen(self):
        (self.notes / "listen").unlink()
        self.run_client()
        status, _, errors = self.finish(self.launch())
        self.assertEqual((status, "does not answer" in errors), (1, True))
        second = self.launch()
        self.tell("listen")
        self.assertEqual(self.finish(second)[0], 0)
        self.assertEqual(len(self.starts()), 1)

    def test_dead_first_start_blocks_nobody(self):
        _, first = self.run_client()
        os.kill(first["pid"], signal.SIGKILL)
        _, second = self.run_client()
        self.assertEqual(second["folder"], first["folder"])
        self.assertNotEqual(second["environment"]["TMPDIR"], first["environment"]["TMPDIR"])

    def test_what_a_fallen_machine_left_is_removed(self):
        folder = self.home / ".local/share/zorvane-client"
        folder.mkdir(parents=True)
        for name, is_kept in (("zorvane-client.aB3dE6", False), ("zorvane-client.aB3dE67", True),
                              ("photos", True)):
            with self.subTest(name):
                left = self.root / name
                left.mkdir()
                (folder / ".lock").write_text(f"{left}\n")
                process, client = self.run_client()
                self.assertEqual(left.exists(), is_kept)
                self.tell("end")
                self.finish(process)
                self.gone(client)

    def test_new_takes_a_free_folder(self):
        names = []
        for arguments in ([], ["--new"], ["--new"]):
            names.append(pathlib.Path(self.run_client(*arguments)[1]["folder"]).name)
        self.assertEqual(names, ["zorvane-client", "zorvane-client-2", "zorvane-client-3"])
        os.kill(self.starts()[1]["pid"], signal.SIGKILL)
        self.gone(self.starts()[1])
        self.assertEqual(self.run_client("--new")[1]["folder"], self.starts()[1]["folder"])

    def test_profile_of_the_system(self):
        profile = self.etc / "service.ini"
        mine = self.root / "mine"
        mine.mkdir()
        (mine / "service.ini").write_text("mine")
        astray = self.root / "astray"
        astray.mkdir()
        (astray / "service.ini").symlink_to("nowhere")
        for folder, present, expected in (("none", False, None), ("none", True, str(profile)),
                                          (mine, True, "mine"), (astray, True, "nowhere")):
            with self.subTest(folder=folder, present=present):
                if present:
                    profile.write_text("[service]\n")
                process, client = self.run_client("--folder", str(folder))
                file = pathlib.Path(client["folder"]) / "service.ini"
                found = os.readlink(file) if file.is_symlink() else \
                    file.read_text() if file.exists() else None
                self.assertEqual(found, expected)
                self.tell("end")
                self.finish(process)
                self.gone(client)

    def test_what_it_opens_outlives_it(self):
        page = self.root / "page"
        write_program(self.root / "path/xdg-open", f"""#!/bin/bash
            {{ echo "$*"; echo "${{TMPDIR-none}}"; env | grep -c '^ZORVANE_\\|lib/zorvane'; }} >"{page}.part"
            mv "{page}.part" "{page}"
            exec sleep 1000 </dev/null >/dev/null 2>&1
            """)
        for outer in (str(self.tmp), None):
            with self.subTest(outer):
                if outer is None:
                    self.environment.pop("TMPDIR")
                process, client = self.run_client()
                self.tell("open-page")
                wait_for("page", page.exists)
                self.assertEqual(page.read_text().split("\n"),
                                 ["https://page.example/", outer or "none", "0", ""])
                self.tell("end")
                self.finish(process)
                self.gone(client)
                page.unlink()
        self.run_client()  # nobody holds its folder

    def test_try_with_a_demo_service(self):
        place = self.root / "bin/zorvane-try"
        shutil.copy(source / "zorvane-try", place)
        self.environment["PATH"] = f"{place.parent}:{self.environment['PATH']}"
        data = self.home / ".cache/zorvane-demo"

        def demo(text):
            write_program(self.root / "path/zorvane-demo", "#!/bin/bash\n" + text)

        def try_it(*arguments):
            return subprocess.Popen([place, *arguments], env=self.environment, text=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.PIPE)

        for arguments, status in ((["--help"], 0), (["x"], 2)):
            self.assertEqual(self.finish(try_it(*arguments))[0], status)
        demo("exit 1\n")
        status, _, errors = self.finish(try_it())
        self.assertEqual((status, errors), (1, "zorvane-try: the demo service did not start\n"))
        demo(f"""echo "$*" >"{self.root}/demo"
            echo '{{"api":1,"email":"demo@zorvane.example","password":"secret","lanPassword":"x"}}'
            exec 1>&-
            cat >/dev/null
            rm "{self.root}/demo"
            """)
        process = try_it()
        self.addCleanup(lambda: process.communicate(timeout=patience))
        client = wait_for("start", self.starts)[0]
        self.assertEqual(client["folder"], str(data / "client"))
        self.assertEqual((self.root / "demo").read_text(),
                         f"--data {data} --write-config {data}/client\n")
        settings = data / "client/ZorvaneClient.ini"
        self.assertEqual(settings.read_text(), "[auth]\nemail=demo@zorvane.example\n"
                                               "password=secret\nsaveAuth=true\n")
        self.assertEqual(stat.S_IMODE(settings.stat().st_mode), 0o600)
        self.assertEqual(self.finish(try_it()), (0, "", ""))
        self.assertEqual(len(self.starts()), 1)
        os.kill(client["pid"], signal.SIGKILL)
        wait_for("end of the service", lambda: not (self.root / "demo").exists())

    def test_home(self):
        """Which programs it starts, with stand-ins for all of them: a server that runs has left
        its mark, and so has one of the whole machine."""
        data = self.home / ".local/share"
        state, client = data / "zorvane-server", data / "zorvane-home"
        marks = self.root / "marks"
        for name, does in {
                "zorvane-server": """case $1 in
                    status) [ -e $m/runs ] ;; check) [ -e $m/sound ] ;;
                    prepare) mkdir "$2" ;; client-files) mkdir -p "$2"; touch "$2/service.ini" ;;
                    *) [ -e $m/starts ] && touch $m/runs || echo taken >&2 ;; esac""",
                "systemctl": "[ -e $m/machine ]",
                "sudo": '"$@"',
                "zorvane-client": ":"}.items():
            write_program(self.root / "path" / name, f"""#!/bin/bash
                m={marks}
                [ "{name} $1" = "zorvane-server status" ] || [ {name} = systemctl ] \\
                    || echo "{name} $*" >>{self.root}/did
                {does}
                """)
        place = self.root / "bin/zorvane-home"
        write_program(place, (source / "zorvane-home").read_text().replace(
            "\nanswer_seconds=20\n", "\nanswer_seconds=1\n"))
        prepare = f"zorvane-server prepare {state}/archive"
        files = f"zorvane-server client-files {client}"
        show = f"zorvane-client --folder {client}"
        check, start = "zorvane-server check", "zorvane-server "
        full_log = "a line\n" * 200_000
        for marked, kept, arguments, status, did, errors in (
                ("", "", ["--what"], 2, [], "Usage"),
                ("", "", ["--help"], 0, [], ""),
                ("", "", [], 1, [prepare, check], "no cameras"),
                ("sound", "", [], 1, [prepare, check, start], "ends with: taken"),
                ("sound starts", "", [], 0, [prepare, check, start, files, show], ""),
                ("sound starts", "archive", [], 0, [check, start, files, show], ""),
                ("sound starts", "archive log", [], 0, [check, start, files, show], ""),
                ("runs", "archive", [], 0, [files, show], ""),
                ("runs", "archive service.ini", [], 0, [show], ""),
                ("runs", "service.ini", ["--kiosk", "A b"], 0, [f"{show} --kiosk A b"], ""),
                ("machine", "", [], 0, [f"sudo {files}", files, show], ""),
                ("machine", "service.ini", [], 0, [show], "")):
            with self.subTest(marked=marked, kept=kept, arguments=arguments):
                shutil.rmtree(data, ignore_errors=True)
                shutil.rmtree(marks, ignore_errors=True)
                (self.root / "did").unlink(missing_ok=True)
                marks.mkdir()
                for mark in marked.split():
                    (marks / mark).touch()
                for folder, name in ((state, "archive"), (client, "service.ini")):
                    if name in kept:
                        folder.mkdir(parents=True)
                        (folder / name).touch()
                if "log" in kept:
                    (state / "log").write_text(full_log)
                result = subprocess.run([place, *arguments], env=self.environment, text=True,
                                        capture_output=True, timeout=patience)
                self.assertEqual(result.returncode, status, result.stderr)
                done = self.root / "did"
                self.assertEqual(done.read_text().splitlines() if done.exists() else [], did)
                self.assertIn(errors, result.stderr)
                if prepare in did:
                    self.assertEqual(stat.S_IMODE(state.stat().st_mode), 0o700)
                if "log" in kept:
                    self.assertEqual((state / "log.1").read_text(), full_log)
                    self.assertLess((state / "log").stat().st_size, len(full_log))


if __name__ == "__main__":
    unittest.main()
