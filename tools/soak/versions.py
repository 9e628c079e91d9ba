# SPDX-License-Identifier: MIT
"""The file of layouts and the former ones beside it: what a kill may make of them."""
import json
import os
import stat

from watch import Failure

KEPT = 10
OWNER_ONLY = 0o600
LAYOUT_KEYS = {"id", "name", "rows", "columns", "cameras"}


def read(cache):
    """Content and state of those that are there, from the newest to the oldest."""
    found = {}
    for name in [cache] + [f"{cache}.{number}" for number in range(KEPT + 1)]:
        if os.path.exists(name):
            with open(name, "rb") as file:
                found[name] = file.read(), os.fstat(file.fileno())
    return found


def judge(cache, before, after):
    """Both as `read` gives them."""
    if cache not in after:
        raise Failure("the layouts are gone")
    documents = {name: whole(name, content) for name, (content, _) in after.items()}
    for name, (_, state) in after.items():
        if stat.S_IMODE(state.st_mode) != OWNER_ONLY:
            raise Failure(f"{name} has the mode {stat.S_IMODE(state.st_mode):o}")
    were = {name: json.loads(content) for name, (content, _) in before.items()}
    if documents[cache]["last_update"] < were[cache]["last_update"]:
        raise Failure(f"{cache} went back")
    known = {identity(state) for _, state in before.values()}
    new = sum(identity(state) not in known for name, (_, state) in after.items() if name != cache)
    if not goes_on(lists_of(were), lists_of(documents), new):
        raise Failure(f"of {list(before)} not all stay: {list(after)}, {new} of them new")


def identity(state):
    """A version is the same file for as long as it is kept, whatever its number."""
    return state.st_ino, state.st_mtime_ns


def lists_of(documents):
    return [document["layouts"] for document in documents.values()]


def goes_on(before, after, new):
    """Lists, first the present one: `new` ones came before those that were kept; one is gone only
    where ten are newer."""
    present, kept = after[0], after[1:]
    stays = kept[new:] == before[1:][:len(kept) - new] \
        and (len(kept) >= KEPT or len(kept) - new == len(before) - 1)
    return stays and (before[0] in [present] + kept[:new + 1] or new >= KEPT)


def whole(name, content):
    try:
        document = json.loads(content)
        is_whole = document["last_update"] > 0 and all(
            LAYOUT_KEYS <= layout.keys() for layout in document["layouts"])
    except (ValueError, KeyError):
        is_whole = False
    if not is_whole:
        raise Failure(f"{name} is torn")
    return document
