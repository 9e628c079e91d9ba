#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# Usage: tests/desktop/run.py BIN FOLDER x11|wayland|screens|light|dark [SCALE]
# Runs the client in BIN with a demo service on a desktop of its own and uses it as a screen reader
# would, and with the pointer: signs in, plays, drags, goes fullscreen, goes through the records.
# With "screens" its window moves from a screen to one of twice the density instead; with "light"
# and "dark", themes of a desktop, only the parts that keep still are looked at.
# Leaves pictures in FOLDER. Needs a session bus with assistive technology (dbus-run-session).
import json, os, signal, subprocess, sys, time

STORIES = ("x11", "wayland", "screens", "light", "dark")
if len(sys.argv) not in (4, 5) or sys.argv[3] not in STORIES:
    sys.exit(open(__file__).readlines()[2][2:].strip())
BIN, FOLDER, STORY = sys.argv[1:4]
SESSION = "wayland" if STORY in ("wayland", "screens") else "x11"
SCALE = float(sys.argv[4]) if len(sys.argv) == 5 else 1.0
THEMES = {"light": "Adwaita", "dark": "Adwaita:dark"}
CLIPS = os.environ.get("ZORVANE_CLIP_CACHE")
WINDOW = (1100, 650)  # as large as the main window at its first start
# Under Wayland a window can't say where it stands: the output is no larger than it.
DESK = WINDOW if SESSION == "wayland" else (1280, 800)
DEADLINE = 60
SECOND = {"scale": 1, "left": 0}  # where the window is, once it is on the second screen
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
        for node in nodes(program() or Atspi.get_desktop(0)) if "Atspi" in globals() else []:
            print(node.get_role_name(), repr(node.get_name()), repr(node.get_description()),
                  "showing" if has(node, "SHOWING") else "hidden", file=tree)
    raise SystemExit(f"FAILED: {what} (see failed.png and failed.txt)")


def done(what, detail=""):
    print(f"| {what} | {detail or 'yes'} |", flush=True)


# -- the desktop ------------------------------------------------------------------------------

def start_desktop():
    size = [round(side * SCALE) for side in DESK]
    # Two screens stand side by side; the second has four times the pixels.
    room = [size[0] * 3, size[1] * 2] if STORY == "screens" else size
    read, write = os.pipe()
    start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{room[0]}x{room[1]}x24",
           "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.environ["DISPLAY"] = ":" + os.read(read, 16).decode().strip()
    if SESSION == "x11":
        start(["openbox"], stderr=subprocess.DEVNULL)
        # As Plasma scales its programs; Qt 5 rounds the Xft.dpi of others to whole scales.
        os.environ.update(QT_QPA_PLATFORM="xcb", QT_SCREEN_SCALE_FACTORS=str(SCALE))
        if STORY in THEMES:
            # The bridge of the library that draws the theme would tell of the program once more.
            os.environ.update(QT_QPA_PLATFORMTHEME="gtk3", GTK_THEME=THEMES[STORY],
                              NO_AT_BRIDGE="1")
        return
    # An output is scaled by whole numbers only.
    whole = int(SCALE) if SCALE == int(SCALE) else 1
    if whole != SCALE:
        os.environ["QT_SCALE_FACTOR"] = str(SCALE)
    outputs = [("X1", whole), ("X2", 2)] if STORY == "screens" else [("X1", whole)]
    config = os.path.join(FOLDER, "weston.ini")
    with open(config, "w") as ini:
        ini.write("[core]\nidle-time=0\n[shell]\npanel-position=none\nlocking=false\n"
                  "background-color=0xffd6dae0\nanimation=none\nstartup-animation=none\n")
        for name, scale in outputs:
            ini.write(f"[output]\nname={name}\nscale={scale}\n"
                      f"mode={size[0] // whole}x{size[1] // whole}\n")
    socket = "zorvane-desktop"
    start(["weston", "--backend=x11-backend.so", "--use-pixman", f"--config={config}",
           f"--socket={socket}", f"--output-count={len(outputs)}"],
          stdout=subprocess.DEVNULL, stderr=open(os.path.join(FOLDER, "weston.log"), "w"))
    wait_for("weston starts", lambda: os.path.exists(
        os.path.join(os.environ["XDG_RUNTIME_DIR"], socket)))
    wait_for("the screens", lambda: len(windows("--class", "weston")) == len(outputs))
    ids = windows("--class", "weston")
    # No window manager gives the first one the keys, or moves the second beside it.
    pointer("windowfocus", "--sync", ids[0], "mousemove", 5, 5, "click", 1)
    if len(ids) > 1:
        pointer("windowmove", ids[1], size[0], 0)
    os.environ.update(WAYLAND_DISPLAY=socket, QT_QPA_PLATFORM="wayland",
                      QT_WAYLAND_DISABLE_WINDOWDECORATION="1")


def take(name, node=None):
    """What the desktop shows, or a part of it."""
    area = []
    if node:
        box = node.get_extents(Atspi.CoordType.SCREEN)
        area = ["-crop", f"{box.width}x{box.height}+{box.x}+{box.y}", "+repage"]
    subprocess.run(["import", "-window", "root", *area, os.path.join(FOLDER, name + ".png")],
                   check=True)


def pointer(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True)


def windows(*kind):
    """In the order in which they were made."""
    found = subprocess.run(["xdotool", "search", *kind], capture_output=True, text=True)
    return sorted(int(number) for number in found.stdout.split())


def start_assistive_technology():
    """As it runs on a desktop. The toolkit misses what is only about to start."""
    from gi.repository import Gio, GLib

    def ask(connection, name, path, method, *arguments):
        return connection.call_sync(name, path, name, method, *arguments, None, 0, -1, None)

    address, = ask(Gio.bus_get_sync(Gio.BusType.SESSION), "org.a11y.Bus", "/org/a11y/bus",
                   "GetAddress", None).unpack()
    flags = (Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
             Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    bus = wait_for("the bus of assistive technology", lambda: Gio.DBusConnection.
                   new_for_address_sync(address, flags, None, None))
    ask(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "StartServiceByName",
        GLib.Variant("(su)", ("org.a11y.atspi.Registry", 0)))


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
    os.environ.update(QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", SDL_AUDIODRIVER="dummy")
    start_assistive_technology()
    for attempts_left in reversed(range(8)):
        log = open(os.path.join(FOLDER, "client.log"), "w")
        client = start([os.path.join(BIN, "ZorvaneClient")], cwd=run, stderr=log)
        wait_for("signing in", lambda: "Roster updated" in open(log.name).read())
        load_atspi()
        if await_program() or attempts_left == 0:
            return
        # On a busy machine the toolkit's connection can be late for the only time that it asks.
        print("The toolkit missed assistive technology; once more.", flush=True)
        client.terminate()
        client.wait()


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
    desktop.clear_cache()
    for i in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(i)
        # What the theme of a desktop loads tells of itself under the name of the file.
        if child and child.get_name() == "Zorvane Client":
            child.clear_cache()
            return child
    return None


def await_program():
    end = time.monotonic() + DEADLINE / 8
    while not program() and time.monotonic() < end:
        time.sleep(0.2)
    return program()


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
    scale = SCALE * SECOND["scale"]
    return (round((box.x - left + box.width / 2) * scale) + SECOND["left"],
            round((box.y - top + box.height / 2) * scale))


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


def sign_in():
    os.makedirs(FOLDER, exist_ok=True)
    start_desktop()
    start_client()
    wait_for("the roster", lambda: len(find("list item")) >= 2)
    cards = [card for card in find("list item") if "(" not in card.get_name()]
    done("starts, signs in, tells of cameras", f"{len(cards)} cards on the screen")
    return cards


def play(card):
    act(card)
    wait_for("a picture", lambda: plays(card.get_name()))
    wait_for("moving pictures", moving)
    done("plays the camera of a card pressed over AT-SPI", tile().get_description())


def use_all(cards):
    done("names and roles of the main window", check_names())
    play(cards[0])
    take("live")

    drag(cards[1], tile())
    wait_for("a dropped camera", lambda: plays(cards[1].get_name()))
    done("plays a card dragged onto the tile by the pointer", tile().get_name())

    box = find("frame")[0].get_extents(Atspi.CoordType.SCREEN)
    # Weston takes the keys from a window that begins a drag until it is clicked.
    pointer("mousemove", *middle(tile()), "click", 1, "key", "f")
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


def open_dialog():
    act(find("push button", name="Settings")[0])
    act(wait_for("the settings", lambda: find("push button", name="Add local server"))[0])
    return wait_for("the dialog", lambda: find("dialog"))[0]


def look_at_still_parts(cards):
    """What no camera and no clock changes."""
    before = windows("--onlyvisible", "--classname", "ZorvaneClient")
    act(cards[0], "ShowMenu")
    # The toolkit tells of its items as they get the focus, not of where it is.
    menu = wait_for("the menu", lambda: set(windows("--onlyvisible", "--classname",
                                                    "ZorvaneClient")) - set(before)).pop()
    time.sleep(0.5)
    subprocess.run(["import", "-window", str(menu), os.path.join(FOLDER, "menu.png")], check=True)
    pointer("key", "Escape")
    dialog = open_dialog()
    done("names and roles with a dialog", check_names())
    cancel, ok = [find("push button", name=name)[0].get_extents(Atspi.CoordType.SCREEN).x
                  for name in ("Cancel", "OK")]
    if cancel > ok:
        raise SystemExit("FAILED: the theme of the desktop is not in force")
    find("push button", name="Cancel")[0].grab_focus()  # nothing blinks there
    time.sleep(0.5)
    take("dialog", dialog)
    pointer("key", "Escape")
    wait_for("the end of the dialog", lambda: not find("dialog"))
    time.sleep(0.5)
    take("settings")
    done("shows a menu, the settings and a dialog under the theme", THEMES[STORY])


def change_screen(cards):
    play(cards[0])
    take("first-screen")
    # A drag ends at the edge of the screen on which it began, so it takes two: by the left edge,
    # and on, until nothing is left on the first screen.
    height = DESK[1] // 2
    for places in (range(2, DESK[0], 100), range(DESK[0] + 40, DESK[0] + 90, 10)):
        pointer("mousemove", places[0], height, "keydown", "super", "mousedown", 1)
        for x in [*places, places.stop - 1]:
            pointer("mousemove", x, height)
            time.sleep(0.1)
        pointer("mouseup", 1, "keyup", "super")
    SECOND.update(scale=2, left=DESK[0])
    wait_for("moving pictures on the second screen", moving)
    take("second-screen")
    done("moves to a screen of twice the density", tile().get_description())


def main():
    cards = sign_in()
    story = {"screens": change_screen, "light": look_at_still_parts, "dark": look_at_still_parts}
    story.get(STORY, use_all)(cards)


signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended"))  # with all that it started
try:
    main()
finally:
    for process in reversed(processes):
        process.terminate()
    for process in processes:
        process.wait()
