#!/usr/bin/env bash
# `make run` on a machine with no display ends with the display failure and the hint to `make video`,
# instead of playing unseen. Usage: run-without-display.sh SOURCE_DIR BUILD_DIR (the build is done already).
set -uo pipefail
source_dir=$1
build=$2
out=$(mktemp /tmp/velmora-make-run-XXXXXX)
trap 'rm -f "$out"' EXIT

# The guard only catches a hang; a passing run ends in a second or two after the build check. The make that
# runs the tests (make test) must not hand its job server or its variables to this one.
env -u DISPLAY -u WAYLAND_DISPLAY -u SDL_VIDEODRIVER -u MAKEFLAGS -u MFLAGS -u MAKELEVEL \
    timeout 120 make -s -C "$source_dir" run BUILD="$build" >"$out" 2>&1
status=$?
if [[ $status -eq 124 ]]; then
    echo "FAIL: make run was still running after 120 s" >&2
    cat "$out" >&2
    exit 1
fi
# The failure line, then the hint as the last line.
if ! grep -q "^ERROR! Couldn't init SDL: " "$out" || ! tail -n 1 "$out" | grep -q "make video"; then
    echo "FAIL: make run (status $status) did not end with the display failure and the hint" >&2
    cat "$out" >&2
    exit 1
fi
grep -A1 "^ERROR! Couldn't init SDL: " "$out"
