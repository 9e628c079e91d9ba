#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# Usage: tests/desktop/run.py BIN FOLDER x11|wayland [SCALE]
# Runs the client in BIN with a demo service on a desktop of its own and uses it as a screen reader
# would, and with the pointer: signs in, plays, drags, goes fullscreen, goes through the records.
# Leaves pictures in FOLDER. Needs a session bus with assistive technology (dbus-run-session).
import json, os, subprocess, sys, time

if len(sys.argv) not in (4, 5) or sys.argv[3] not in ("x11", "wayland"):
    sys.exit(open(__file__).readlines()[2][2:].strip())
BIN, FOLDER, SESSION = sys.argv[1:4]
SCALE = float(sys.argv[4]) if len(sys.argv) == 5 else 1.0
CLIPS = os.environ.get("ZORVANE_CLIP_CACHE")
WINDOW = (1100, 650)  # as large as the main window at its first start
# Under Wayland a window can't say where it stands: the output is no larger than it.
DESK = WINDOW if SESSION == "wayland" else (1280, 800)
DEADLINE = 60
processes = []


def start(command, **options):
    processes.append(subprocess.Popen(command, **options))
    return processes[-1]


def wait_for(what, condition, deadline=DEADLINE):
    end = time.monotonic() + deadline
    while time.monotonic() < end:
        try:
            found = condition()
        except Exception:  # it went while it was asked
            found = None
        if found:
            return found
        time.sleep(0.1)
    take("failed")
    with open(os.path.join(FOLDER, "failed.txt"), "w") as tree:
        for node in nodes(program()) if "Atspi" in globals() and program() else []:
            print(node.get_role_name(), repr(node.get_name()), repr(node.get_description()),
                  "showing" if has(node, "SHOWING") else "hidden", file=tree)
    raise SystemExit(f"FAILED: {what} (see failed.png and failed.txt)")


def done(what, detail=""):
    print(f"| {what} | {detail or 'yes'} |", flush=True)


# -- the desktop ------------------------------------------------------------------------------

def start_desktop():
    size = [round(side * SCALE) for side in DESK]
    read, write = os.pipe()
    start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{size[0]}x{size[1]}x24",
           "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.environ["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
    if SESSION == "x11":
        start(["openbox"], stderr=subprocess.DEVNULL)
        os.environ["QT_QPA_PLATFORM"] = "xcb"
        return
    config = os.path.join(FOLDER, "weston.ini")
    with open(config, "w") as ini:
        ini.write("[core]\nidle-time=0\n[shell]\npanel-position=none\nlocking=false\n"
                  "background-color=0xffd6dae0\nanimation=none\nstartup-animation=none\n")
    socket = "zorvane-desktop"
    start(["weston", "--backend=x11-backend.so", "--use-pixman", f"--config={config}",
           f"--width={size[0]}", f"--height={size[1]}", f"--socket={socket}"],
          stdout=subprocess.DEVNULL, stderr=open(os.path.join(FOLDER, "weston.log"), "w"))
    wait_for("weston starts", lambda: os.path.exists(
        os.path.join(os.environ["XDG_RUNTIME_DIR"], socket)))
    # No window manager gives it the keys.
    pointer("search", "--sync", "--name", "Weston Compositor", "windowfocus")
    os.environ.update(WAYLAND_DISPLAY=socket, QT_QPA_PLATFORM="wayland",
                      QT_WAYLAND_DISABLE_WINDOWDECORATION="1")


def take(name):
    subprocess.run(["import", "-window", "root", os.path.join(FOLDER, name + ".png")], check=True)


def pointer(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True)


def start_client():
    data, run = os.path.join(FOLDER, "data"), os.path.join(FOLDER, "run")
    os.makedirs(run, exist_ok=True)
    demo = start([os.path.join(BIN, "zorvane-demo"), "--data", data, "--write-config", run,
                  *(["--clips", CLIPS] if CLIPS else [])],
                 stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    account = json.loads(demo.stdout.readline())
    with open(os.path.join(run, "ZorvaneClient.ini"), "w") as ini:
        ini.write(f"[auth]\nemail={account['email']}\npassword={account['password']}\n"
                  "saveAuth=true\n[common]\nlanguage=en\n")
    os.environ.update(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", QT_SCALE_FACTOR=str(SCALE),
                      SDL_AUDIODRIVER="dummy")
    start([os.path.join(BIN, "ZorvaneClient")], cwd=run,
          stderr=open(os.path.join(FOLDER, "client.log"), "w"))


# -- what a screen reader sees ----------------------------------------------------------------

def load_atspi():
    """Not before the client is there: an empty desktop would be kept for long."""
    global Atspi, GLib
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, GLib


def program():
    while GLib.MainContext.default().iteration(False):
        pass  # hears of programs that came and of what changed
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(i)
        if child and "Zorvane" in (child.get_name() or ""):
            child.clear_cache()
            return child
    return None


def nodes(top):
    yield top
    for i in range(top.get_child_count()):
        child = top.get_child_at_index(i)
        if child:
            yield from nodes(child)


def has(node, state):
    return node.get_state_set().contains(getattr(Atspi.StateType, state))


def find(*roles, name=None):
    """The visible nodes of one of the roles, of that name if one is given."""
    top = program()
    return [node for node in nodes(top) if node.get_role_name() in roles and has(node, "SHOWING")
            and (name is None or node.get_name() == name)] if top else []


def act(node, action="Press"):
    for i in range(node.get_n_actions()):
        if node.get_action_name(i) == action:
            return node.do_action(i)
    raise SystemExit(f"FAILED: {node.get_name()} can't do {action}")


def middle(node):
    box = node.get_extents(Atspi.CoordType.SCREEN)
    # A window under Wayland believes anything of its place; it is in the corner.
    origin = find("frame")[0].get_extents(Atspi.CoordType.SCREEN)
    left, top = (origin.x, origin.y) if SESSION == "wayland" else (0, 0)
    return (round((box.x - left + box.width / 2) * SCALE),
            round((box.y - top + box.height / 2) * SCALE))


def check_names():
    count, faults = 0, []
    for node in nodes(program()):
        # Scroll bars have no names on any desktop.
        if not (has(node, "FOCUSABLE") or node.get_n_actions() > 0) or \
                node.get_role_name() == "scroll bar":
            continue
        count += 1
        if not node.get_name() or node.get_role_name() in ("unknown", "invalid", "filler"):
            faults.append(f"{node.get_role_name()} \"{node.get_name()}\"")
    if faults:
        raise SystemExit("FAILED: without name or role: " + ", ".join(sorted(set(faults))))
    return f"{count} that can have the focus or be pressed, all with name and role"


def tile():
    return next((node for node in find("panel", "grouping") if node.get_description()), None)


def plays(camera=None):
    shown = tile()
    return shown and shown.get_description().startswith("Live") and \
        (camera is None or shown.get_name() == camera) and shown


def moving():
    """Whether the picture changes where the tile is."""
    x, y = middle(tile())
    for name in ("first", "second"):
        take(name)
        time.sleep(0.5)
    area = f"300x200+{x - 150}+{y - 100}"
    names = [os.path.join(FOLDER, name + ".png") for name in ("first", "second")]
    pixels = subprocess.run(["compare", "-metric", "AE", "-fuzz", "4%", "-extract", area, *names,
                             "null:"], capture_output=True, text=True).stderr
    return float(pixels.split()[0]) > 100


def drag(source, target):
    pointer("mousemove", *middle(source), "mousedown", 1)
    x, y = middle(target)
    for step in range(8):
        pointer("mousemove", x, y + step * 4)
        time.sleep(0.1)
    pointer("mouseup", 1)


def main():
    os.makedirs(FOLDER, exist_ok=True)
    start_desktop()
    start_client()
    log = os.path.join(FOLDER, "client.log")
    wait_for("signing in", lambda: "Roster updated" in open(log).read())
    load_atspi()
    wait_for("the roster", lambda: len(find("list item")) >= 2)
    cards = [card for card in find("list item") if "(" not in card.get_name()]
    done("starts, signs in, tells of cameras", f"{len(cards)} cards on the screen")
    done("names and roles of the main window", check_names())

    act(cards[0])
    wait_for("a picture", lambda: plays(cards[0].get_name()))
    wait_for("moving pictures", moving)
    done("plays the camera of a card pressed over AT-SPI", tile().get_description())
    take("live")

    drag(cards[1], tile())
    wait_for("a dropped camera", lambda: plays(cards[1].get_name()))
    done("plays a card dragged onto the tile by the pointer", tile().get_name())

    frame = find("frame")[0]
    box = frame.get_extents(Atspi.CoordType.SCREEN)
    pointer("mousemove", *middle(tile()), "key", "f")
    wait_for("fullscreen", lambda: tile().get_size().x > 0.97 * DESK[0])
    time.sleep(0.5)
    take("fullscreen")
    pointer("key", "Escape")
    wait_for("a window again", lambda: find("frame")[0].get_extents(
        Atspi.CoordType.SCREEN).width == box.width and find("list item"))
    done("goes fullscreen and back by keys", f"{box.width} x {box.height} again")

    act(find("push button", name="Show records")[0])
    strip = wait_for("the strip", lambda: find("slider", name="Time of the records"))[0]
    noon = 12 * 3600
    value = (strip.get_minimum_value(), strip.get_maximum_value())
    if value != (0, 86399):
        raise SystemExit(f"FAILED: the strip goes from {value[0]} to {value[1]}")
    strip.set_current_value(noon)
    wait_for("records", lambda: tile().get_description().startswith("Records"))
    done("plays records from a value set on the strip", strip.get_description())
    take("records")
    done("names and roles with records", check_names())


try:
    main()
finally:
    for process in reversed(processes):
        process.terminate()
    for process in processes:
        process.wait()
