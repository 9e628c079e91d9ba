# SPDX-License-Identifier: MIT
# Shared by the scripts beside it; sourced, not run.

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '== %s\n' "$*"; }
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }

# install_packages KIND...: installs what is missing of the packages of those kinds.
install_packages() {
    local wanted missing=() name
    wanted=$(awk -v kinds=" $* " '!/^#/ {
        for (i = 2; i <= NF; i++)
            if (index(kinds, " " $i " ")) { print $1; next }
    }' "$project/scripts/packages")
    for name in $wanted; do
        dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'ok installed' \
            || missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null && sudo -v 2>/dev/null \
            || fail "these packages are missing and can't be installed here: ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    mkdir -p "$project/build"
    local log="$project/build/install.log"
    { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update \
        && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y \
            --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null \
        || { tail -n 5 "$log" >&2; fail "could not install: ${missing[*]} (see $log)"; }
}

# build_preset PRESET [TARGET...]: configures and builds; quick when nothing has changed.
build_preset() {
    local preset=$1 log="$project/build/configure.log"
    shift
    say "configuring ($preset)"
    mkdir -p "$project/build"
    cmake -S "$project" --preset "$preset" >"$log" 2>&1 \
        || { tail -n 20 "$log" >&2; fail "configuring (see $log)"; }
    say "building"
    local targets=()
    [ $# -eq 0 ] || targets=(--target "$@")
    cmake --build "$project/build/$preset" "${targets[@]}" || fail "building"
}

# share_clips: all programs of a script take the demo's clips from one folder; the first that
# needs one makes it.
share_clips() {
    export ZORVANE_CLIP_CACHE="$project/build/clips"
    mkdir -p "$ZORVANE_CLIP_CACHE"
}

# start_display SIZE [OPTION...]: without a display, starts one of that size; display_pid is its
# process.
start_display() {
    display_pid=
    [ -z "${DISPLAY:-}" ] || return 0
    local pipe
    pipe=$(mktemp -u)
    mkfifo "$pipe"
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp "${@:2}" 3>"$pipe" >/dev/null 2>&1 &
    display_pid=$!
    local number
    read -r -t 30 number <"$pipe" || fail "Xvfb did not start"
    rm -f "$pipe"
    export DISPLAY=":$number"
}

# Where the first card of the client's side list stands in its window.
card_x=190 card_y=150

# The main window is the one as wide as the side list and the grid together.
main_window() {
    local id
    for id in $(xdotool search --onlyvisible --pid "$client_pid" 2>/dev/null); do
        eval "$(xdotool getwindowgeometry --shell "$id" 2>/dev/null)" || continue
        [ "${WIDTH:-0}" -ge 900 ] && { echo "$id"; return 0; }
    done
    return 1
}

# wait_for_main_window: sets window to the one of the client that is client_pid, whose output
# goes to $data/client.out.
wait_for_main_window() {
    window=
    for _ in $(seq 150); do
        kill -0 "$client_pid" 2>/dev/null || fail "the client ended (see $data/client.out)"
        window=$(main_window) && break
        sleep 0.2
    done
    [ -n "$window" ] || fail "no main window within 30 seconds"
}

# capture FILE: the picture of that window.
capture() { import -window "$window" "$1"; }
