# SPDX-License-Identifier: MIT
"""What a user does: each step takes the run and its own random numbers, and says what it did.

A step that finds no place for what it does says so by an empty text.
"""
import time

import processes
from client import middle

CARDS = "CameraWidget"
LAYOUTS = "LayoutCard"


def window_of(run, random):
    windows = run.client.main_windows()
    if not windows:
        return None
    window = random.choice(sorted(windows, key=lambda each: each["window"]))
    run.hands.raise_window(window["window"])
    return window


def press(run, window, name):
    button = run.client.first("", name, window and window["window"])
    if not button or not button["enabled"]:
        return False
    run.hands.click(*middle(button))
    return True


def choose(run, entry):
    """In the open menu, the entry of that number from 0."""
    entries = processes.wait_until(lambda: run.client.ask("menu")["found"], 3) or []
    if not 0 <= entry < len(entries) or not entries[entry]["enabled"]:
        run.hands.key("Escape")
        return False
    run.hands.click(*middle(entries[entry]))
    return True


def some(random, things):
    return random.choice(sorted(things, key=lambda each: each["place"])) if things else None


def show_page(run, window, button):
    if not run.client.find("SideBar", "", window["window"]):
        press(run, window, "showPBtn")
    return press(run, window, button)


def key_step(*names):
    def step(run, random):
        window = window_of(run, random)
        if not window:
            return ""
        key = random.choice(names)
        run.hands.key(key)
        return f"key {key}"
    return step


def open_camera(run, random):
    window = window_of(run, random)
    if not window or not show_page(run, window, "rosterButton"):
        return ""
    time.sleep(0.3)
    card = some(random, run.client.find(CARDS, "", window["window"]))
    if not card:
        return ""
    run.hands.click(*middle(card))
    run.settle_questions(random)
    return "camera opened from its card"


def open_layout(run, random):
    window = window_of(run, random)
    if not window or not show_page(run, window, "layoutsButton"):
        return ""
    time.sleep(0.3)
    card = some(random, run.client.find(LAYOUTS, "", window["window"]))
    if not card:
        return ""
    run.hands.click(*middle(card))
    run.settle_questions(random)
    return "layout opened from its card"


def new_layout(run, random):
    window = window_of(run, random)
    if not window or len(run.layouts) > 6 or not show_page(run, window, "layoutsButton"):
        return ""
    if not press(run, window, "addLayoutButton"):
        return ""
    run.settle_questions(random)
    time.sleep(0.5)
    if run.client.find("VideoWidget", "", window["window"]):
        return ""  # the question was answered with Cancel
    for _ in range(random.randint(1, 3)):
        drag_camera(run, random)
    return save_as(run, random, f"Layout {random.randint(100, 999)}")


def save_as(run, random, name):
    window = window_of(run, random)
    if not window:
        return ""
    field = run.client.first("", "layoutNameEdit", window["window"])
    button = run.client.first("", "saveLayoutButton", window["window"])
    if not field or not button:
        return ""
    run.hands.click(*middle(field))
    run.hands.key("ctrl+a")
    run.hands.type(name)
    run.hands.click(*middle(button))
    run.layouts.append(name)
    return f"layout saved as {name}"


def drag_camera(run, random):
    window = window_of(run, random)
    if not window or not show_page(run, window, "rosterButton"):
        return ""
    time.sleep(0.3)
    card = some(random, run.client.find(CARDS, "", window["window"]))
    cells = run.client.find("VideoPlaceholder", "", window["window"])
    cells += run.client.find("VideoWidget", "", window["window"])
    cell = some(random, cells)
    if not card or not cell:
        return ""
    run.hands.drag(middle(card), middle(cell))
    return "camera dragged into the grid"


def swap(run, random):
    window = window_of(run, random)
    tiles = run.client.find("VideoWidget", "", window["window"]) if window else []
    if len(tiles) < 2:
        return ""
    first, second = random.sample(sorted(tiles, key=lambda each: each["place"]), 2)
    run.hands.drag(middle(first), middle(second))
    return "tile dragged onto another"


def close_tile(run, random):
    window = window_of(run, random)
    tiles = run.client.find("VideoWidget", "", window["window"]) if window else []
    tile = some(random, tiles)
    if not tile:
        return ""
    run.hands.move(*middle(tile))
    button = processes.wait_until(
        lambda: next((each for each in run.client.find("", "closeButton", window["window"])
                      if inside(each, tile)), None), 2)
    if not button:
        return ""
    run.hands.click(*middle(button))
    return "tile closed"


def inside(inner, outer):
    x, y = middle(inner)
    left, top, width, height = outer["place"]
    return left <= x < left + width and top <= y < top + height


def choose_grid(run, window, rows, columns):
    if not press(run, window, "gridSizeButton"):
        return ""
    popup = processes.wait_until(lambda: run.client.first("GridSizeEditor"), 3)
    if not popup:
        return ""
    left, top = popup["place"][:2]
    run.hands.click(left + 10 + 14 * (columns - 1) + 6, top + 10 + 12 * (rows - 1) + 5)
    return f"grid of {rows} by {columns}"


def resize_grid(run, random):
    window = window_of(run, random)
    return choose_grid(run, window, random.randint(1, 5), random.randint(1, 5)) if window else ""


def save_or_cancel(run, random):
    window = window_of(run, random)
    name = random.choice(["saveLayoutButton", "cancelLayoutButton", "cancelLayoutButton"])
    if not window or not press(run, window, name):
        return ""
    run.settle_questions(random)
    return name


def delete_layout(run, random):
    window = window_of(run, random)
    if not window or not show_page(run, window, "layoutsButton"):
        return ""
    time.sleep(0.3)
    cards = sorted(run.client.find(LAYOUTS, "", window["window"]), key=lambda each: each["place"])
    if len(cards) < 3:
        return ""
    if not delete_card(run, window, random.choice(cards[1:])):  # the first is the wall
        return ""
    run.layouts = run.layouts[:1] + run.layouts[2:]
    return "layout deleted"


def delete_card(run, window, card):
    def menu_button():
        return next((each for each in run.client.find("", "previewMenu", window["window"])
                     if inside(each, card)), None)
    menu = menu_button()
    if not menu:
        run.hands.move(*middle(card))
        menu = processes.wait_until(menu_button, 2)
    if not menu:
        return False
    run.hands.click(*middle(menu))
    return choose(run, 2)


def archive(run, random):
    """Records of one of the days before, from a place on the strip."""
    window = window_of(run, random)
    if not window or not run.client.find("VideoWidget", "", window["window"]):
        return ""
    if not run.client.find("Timeline", "", window["window"]):
        press(run, window, "showRecordsButton")  # keys may go into a field
        if not processes.wait_until(
                lambda: run.client.find("Timeline", "", window["window"]), 5):
            return ""
        for _ in range(random.randint(2, 3)):
            press(run, window, "prevDayButton")
            time.sleep(0.4)
    strip = run.client.first("Timeline", "", window["window"])
    if not strip:
        return ""
    left, top, width, height = strip["place"]
    run.hands.click(left + int(width * random.uniform(0.08, 0.8)), top + 30)
    return "archive jump"


def export(run, random):
    window = window_of(run, random)
    if not window:
        return ""
    for name in ("exportButton", "exportModeButton"):
        if press(run, window, name):
            return name
    if random.random() < 0.5 and press(run, window, "cancelButton"):
        return "export cancelled"
    return ""


def clone_window(run, random):
    windows = run.client.main_windows()
    window = window_of(run, random)
    if not window or len(windows) >= 3:
        return ""
    panel = run.client.first("InfoPanel", "", window["window"])
    buttons = run.client.find("", "settingsButton", window["window"])
    button = next((each for each in buttons if panel and inside(each, panel)), None)
    if not button:
        return ""
    run.hands.click(*middle(button))
    entries = processes.wait_until(lambda: run.client.ask("menu")["found"], 3) or []
    return "window cloned" if choose(run, min(1, len(entries) - 1)) else ""


def card_in_new_window(run, random):
    window = window_of(run, random)
    if not window or len(run.client.main_windows()) >= 3:
        return ""
    page = random.choice(["rosterButton", "layoutsButton"])
    if not show_page(run, window, page):
        return ""
    time.sleep(0.3)
    cards = run.client.find(CARDS if page == "rosterButton" else LAYOUTS, "", window["window"])
    card = some(random, cards)
    if not card:
        return ""
    run.hands.move(*middle(card))
    menu = processes.wait_until(lambda: next(
        (each for each in run.client.find("", "previewMenu", window["window"])
         if inside(each, card)), None), 2)
    if not menu:
        return ""
    run.hands.click(*middle(menu))
    return "card opened in a new window" if choose(run, 2 if page == "rosterButton" else 1) else ""


def close_window(run, random):
    windows = run.client.main_windows()
    if len(windows) < 2:
        return ""
    window_of(run, random)
    time.sleep(0.3)
    run.hands.key("alt+F4")
    run.settle_questions(random)
    return "window closed"


def resize_window(run, random):
    window = window_of(run, random)
    if not window:
        return ""
    size = random.randint(1000, 1800), random.randint(600, 1000)
    run.hands.run("windowsize", window["window"], *size)
    return "window of %d by %d" % size


def zoom(run, random):
    window = window_of(run, random)
    tile = some(random, run.client.find("VideoWidget", "", window["window"]) if window else [])
    if not tile:
        return ""
    run.hands.move(*middle(tile))
    run.hands.run("keydown", "ctrl")
    run.hands.wheel(*middle(tile), random.choice([3, 6]))
    run.hands.run("keyup", "ctrl")
    time.sleep(random.uniform(0.5, 3))
    run.hands.key("0")
    return "zoomed, and back"


def search(run, random):
    if not window_of(run, random):
        return ""
    run.hands.key("ctrl+f")
    run.hands.type(random.choice(["ca", "gate", "12", "ab"]))
    time.sleep(random.uniform(0.3, 1))
    run.hands.key("ctrl+a", "BackSpace", "Escape")
    return "searched"


def settings_page(run, random):
    window = window_of(run, random)
    return "settings page" if window and open_settings(run, window) else ""


def open_settings(run, window):
    """By the tool bar's button; other panels have one of the same name."""
    if not run.client.find("SideBar", "", window["window"]):
        press(run, window, "showPBtn")
    tool = run.client.first("ToolBar", "", window["window"])
    button = next((each for each in run.client.find("", "settingsButton", window["window"])
                   if tool and inside(each, tool)), None)
    if not button:
        return False
    run.hands.click(*middle(button))
    return bool(processes.wait_until(
        lambda: run.client.find("", "languageBox", window["window"]), 3))


def wander(run, random):
    window = window_of(run, random)
    if not window:
        return ""
    left, top, width, height = window["place"]
    for _ in range(random.randint(3, 9)):
        run.hands.move(left + random.randrange(max(1, width)), top + random.randrange(max(1, height)))
        time.sleep(0.05)
    return "pointer moved about"


def change_language(run, random):
    """The program starts anew in the other language."""
    if not settings_page(run, random):
        return ""
    box = processes.wait_until(lambda: run.client.first("", "languageBox"), 3)
    if not box:
        return ""
    run.hands.click(*middle(box))
    time.sleep(0.3)
    run.hands.key("Up" if box["index"] else "Down", "Return")
    button = processes.wait_until(lambda: run.client.first("", "restartButton"), 3)
    if not button:
        return ""
    run.expect_end()
    run.hands.click(*middle(button))
    run.next_client()
    return "language changed, program started anew"


def sign_out_and_in(run, random):
    if not settings_page(run, random):
        return ""
    button = processes.wait_until(lambda: run.client.first("", "signoutButton"), 3)
    if not button:
        return ""
    run.hands.click(*middle(button))
    if not run.answer_question(0):
        return ""
    return "signed out and in" if run.sign_in() else "signed out"


# What may come at any time, with how often; what rests the eyes only, for calm times.
GENTLE = {wander: 3, key_step("n", "n", "s", "m"): 2, search: 1, settings_page: 1,
          key_step("F1"): 1}
STEPS = {open_camera: 1, open_layout: 3, new_layout: 2, drag_camera: 2, swap: 3, close_tile: 1,
         resize_grid: 1, save_or_cancel: 3, delete_layout: 1, archive: 4, export: 2,
         clone_window: 1, card_in_new_window: 1, close_window: 2, resize_window: 1, zoom: 1,
         search: 1, settings_page: 1, wander: 2, sign_out_and_in: 0.5, change_language: 0.3,
         key_step("f", "f", "Return", "Escape", "n", "s", "m", "t", "F1"): 4,
         key_step("l", "Left", "Right", "shift+Left", "shift+Right", "plus", "minus"): 4,
         key_step("space"): 1,
         key_step("ctrl+1", "ctrl+2", "Next", "Prior", "ctrl+Left", "ctrl+Down"): 3}
