#!/usr/bin/env bash
# The installed tree in a scratch prefix: velmora-demo plays the demo from an unrelated directory in the per-user
# working directory it makes on the first run, and a later run keeps the settings edited in between.
# Usage: velmora-demo-test.sh BUILD_DIR (under an X server).
set -euo pipefail
build=$1
scratch=$(mktemp -d /tmp/velmora-install-test-XXXXXX)
prefix="$scratch/prefix"
pid=
cleanup() {
    [[ -n "$pid" ]] && kill -9 "$pid" 2>/dev/null
    rm -rf "$scratch"
}
trap cleanup EXIT

fail() {
    echo "FAIL: $*" >&2
    [[ -f "$scratch/out" ]] && sed 's/^/  velmora: /' "$scratch/out" >&2
    exit 1
}

# Starts the launcher from / and sets `window` to its window's size once it shows. Xvfb now and then refuses
# a connection; such a start says nothing about the launcher and is made again.
window=
start() {
    for attempt in 1 2 3; do
        (cd / && exec "$prefix/bin/velmora-demo") >"$scratch/out" 2>&1 &
        pid=$!
        local id
        id=$(timeout 60 xdotool search --sync --onlyvisible --pid "$pid" 2>/dev/null | head -n 1) || true
        if [[ -n "$id" ]]; then
            eval "$(xdotool getwindowgeometry --shell "$id")"
            window="${WIDTH}x${HEIGHT}"
            return
        fi
        wait "$pid" || true
        pid=
        grep -q "Couldn't init SDL" "$scratch/out" || break
    done
    fail "no window came up"
}

# SIGTERM is a normal end: run's true comes back as exit status 1, kept inverted.
stop() {
    kill -TERM "$pid"
    local status=0
    wait "$pid" || status=$?
    pid=
    [[ $status -eq 1 ]] || fail "exit status $status after SIGTERM"
}

cmake --install "$build" --prefix "$prefix" >/dev/null
for file in bin/velmora bin/velmora-demo bin/velmora-capture bin/velmora-data share/velmora/velmora.cfg \
    share/velmora/data/music/velmora.xm; do
    [[ -e "$prefix/$file" ]] || fail "$file was not installed"
done

export HOME="$scratch/home"
unset XDG_DATA_HOME
work="$HOME/.local/share/velmora"

start
[[ $window == 640x480 ]] || fail "first run: window $window, not the default 640x480"
cmp -s "$work/velmora.cfg" "$prefix/share/velmora/velmora.cfg" || fail "the first run did not copy the default velmora.cfg"
[[ -L "$work/data" && "$(readlink -f "$work/data")" == "$(readlink -f "$prefix/share/velmora/data")" ]] ||
    fail "data is not a link to the installed data"
stop

sed -i -e 's/^Width = .*/Width = 800/' -e 's/^Height = .*/Height = 600/' "$work/velmora.cfg"
start
[[ $window == 800x600 ]] || fail "second run: window $window, not the edited 800x600"
grep -qx "Width = 800" "$work/velmora.cfg" || fail "the second run replaced the edited velmora.cfg"
stop

# XDG_DATA_HOME moves the working directory; a relative one is ignored.
export XDG_DATA_HOME="$scratch/xdg"
start
[[ -f "$XDG_DATA_HOME/velmora/velmora.cfg" && $window == 640x480 ]] || fail "XDG_DATA_HOME was not followed"
stop
echo "velmora-demo: first run, edited settings kept, XDG_DATA_HOME followed"
