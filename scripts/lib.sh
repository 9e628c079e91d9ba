# SPDX-License-Identifier: MIT
# Shared by the scripts beside it; sourced, not run.

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '== %s\n' "$*"; }
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }

# install_packages KIND...: installs what is missing of the packages of those kinds.
install_packages() {
    local wanted missing=() name
    wanted=$(awk -v kinds=" $* " '!/^#/ && index(kinds, " " $2 " ") {print $1}' \
        "$project/scripts/packages" | sort -u)
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
    local preset=$1
    shift
    cd "$project"
    say "configuring ($preset)"
    mkdir -p build
    cmake --preset "$preset" >build/configure.log 2>&1 \
        || { tail -n 20 build/configure.log >&2; fail "configuring (see build/configure.log)"; }
    say "building"
    local targets=()
    [ $# -eq 0 ] || targets=(--target "$@")
    cmake --build "build/$preset" "${targets[@]}" || fail "building"
}

# start_display SIZE: without a display, starts one of that size; display_pid is its process.
start_display() {
    display_pid=
    [ -z "${DISPLAY:-}" ] || return 0
    local pipe
    pipe=$(mktemp -u)
    mkfifo "$pipe"
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>"$pipe" >/dev/null 2>&1 &
    display_pid=$!
    local number
    read -r -t 30 number <"$pipe" || fail "Xvfb did not start"
    rm -f "$pipe"
    export DISPLAY=":$number"
}
