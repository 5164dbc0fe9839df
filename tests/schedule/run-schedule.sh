#!/bin/bash
# Plays the whole schedule through velmora-capture under AddressSanitizer, UndefinedBehaviorSanitizer and
# LeakSanitizer: once on the data tree the build forged, once on a damaged copy of it.
# usage: run-schedule.sh BUILD_DIR   (a build made with -DVELMORA_SANITIZE=ON; needs an X server or none)
set -u
build=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
capture=$build/velmora-capture
scratch=$build/schedule

# Five frames a scene second at 320x240: every entry, down to the one-second faders, is started, updated and
# drawn at least five times, and the full run takes about half a minute under ASan on llvmpipe (ten frames a
# second took twice as long and found nothing more: the step only costs CI time).
step=(--size 320x240 --fps 5 --memory 60)

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export LSAN_OPTIONS=suppressions=$here/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export SDL_AUDIODRIVER=dummy

failures=0
fail() { echo "schedule: FAILED: $*"; failures=$((failures + 1)); }

# run NAME DIR: plays the schedule in DIR, leaves the output in $scratch/NAME.log
run() {
    local log=$scratch/$1.log started status
    started=$(date +%s)
    (cd "$2" && "$capture" "${step[@]}") > "$log" 2>&1
    status=$?
    echo "schedule: $1 data: exit $status after $(($(date +%s) - started)) s (log: $log)"
    [ "$status" -eq 0 ] || fail "$1 run exited with $status"
    if grep -qE 'ERROR: (Address|Leak)Sanitizer|runtime error:|SUMMARY: (Address|Leak|UndefinedBehavior)Sanitizer' "$log"; then
        fail "$1 run: sanitizer report"
        grep -m 40 -A 12 -E 'ERROR: (Address|Leak)Sanitizer|runtime error:' "$log"
    fi
    grep -q '^memory since the last scene started' "$log" || fail "$1 run did not reach the last scene"
    grep -E '^memory (since| .* (start|end)$)' "$log"
}

# expect NAME TEXT: the damaged run must have said TEXT
expect() {
    grep -qF -- "$2" "$scratch/$1.log" || fail "$1 run never printed: $2"
}

# Messages of a scene that could not load its content (the newer scenes say "<Scene>: couldn't load '<file>'");
# none may appear with the full tree.
# ("Couldn't load arial.ttf" may: the greetings ask for a font no system here has, on purpose.)
LOAD_FAILURES="COULDN'N|UNABLE TO|Unable to|Couldn't '|[Cc]ouldn't load '|could not load|Could not load|Failed to load"

mkdir -p "$scratch"

run full "$build"
grep -q 'OpenGL ERROR' "$scratch/full.log" && fail "full run: $(grep -m 3 'OpenGL ERROR' "$scratch/full.log")"
grep -E "$LOAD_FAILURES" "$scratch/full.log" && fail "full run: a load failure with the full data tree"

bash "$here/damage-data.sh" "$build" "$scratch/damaged" > "$scratch/damage.log" || fail "could not damage a copy of the data"
run damaged "$scratch/damaged"
expect damaged "Unable to load tunnel data"
expect damaged "Unable to DRAW tunnel"
expect damaged "Unable to load bird 1"
expect damaged "Unable to load ship animation"
expect damaged "UNABLE TO LOAD data/3d/leaf.msh"
expect damaged "Couldn't load 'data/3d/camera_islands.cam'"
expect damaged "TunnelExit: couldn't load 'data/3d/tunnelexit.oct'"
expect damaged "FlipperLand: couldn't load 'data/banim-1.bez'"
expect damaged "SpaceCraft: couldn't load 'data/3d/camera_spacecraft.cam'"
expect damaged "Cockpit: couldn't load 'data/3d/cockpit.msh'"
expect damaged "CityStreet: couldn't load 'data/3d/cityb.oct'"
expect damaged "BlowUp: couldn't load 'data/3d/camera_blowup.cam'"
expect damaged "SeaBed: couldn't load 'data/3d/seabed.ter'"
expect damaged "SeaBed: couldn't load 'data/3d/fish_seabed.cam'"

if [ "$failures" -ne 0 ]; then
    echo "schedule: $failures failure(s)"
    exit 1
fi
echo "schedule: both runs played to the end with no sanitizer report"
