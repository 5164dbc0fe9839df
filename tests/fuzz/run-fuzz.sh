#!/usr/bin/env bash
# Runs the fuzz programs of a VELMORA_FUZZ build for a bounded time each, from their seeds; a finding fails the run.
# usage: run-fuzz.sh <fuzz build dir> <seconds per target> [target ...]
# FUZZ_JOBS targets run side by side (default: the number of cores); FUZZ_FORGE_DATA names a
# forge data tree (default build/data) whose small meshes, paths and pictures join the seeds.
set -uo pipefail

build=$(cd "$1" && pwd) || exit 2
seconds=$2
shift 2
src=$(cd "$(dirname "$0")" && pwd)
repo=$(cd "$src/../.." && pwd)
forge=${FUZZ_FORGE_DATA:-$repo/build/data}
jobs=${FUZZ_JOBS:-$(nproc)}

targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
  for program in "$build"/tests/fuzz/fuzz_*; do
    targets+=("${program##*/fuzz_}")
  done
fi

dictionary() {
  case $1 in
    mesh|plainmesh|materials|lights|cameras|textures|octree|bezier|terrain|animation) echo "$src/dict/chunks.dict" ;;
    *) [[ -f $src/dict/$1.dict ]] && echo "$src/dict/$1.dict" ;;
  esac
}

# Forge files that the target's reader reads in the demo; big pictures would only slow the run.
forgeSeeds() {
  local pattern
  case $1 in
    mesh) pattern='*.msh' ;;
    octree) pattern='*.oct' ;;
    bezier) pattern='*.bez' ;;
    terrain) pattern='*.ter' ;;
    animation) pattern='*.cam' ;;
    png) pattern='*.png' ;;
    config) [[ -f $repo/velmora.cfg ]] && echo "$repo/velmora.cfg"; return ;;
    *) return ;;
  esac
  [[ -d $forge ]] && find "$forge" -name "$pattern" -size -64k 2>/dev/null
}

runOne() {
  local target=$1
  local program=$build/tests/fuzz/fuzz_$target
  local work=$build/fuzz-corpus/$target findings=$build/fuzz-findings/$target/ log=$build/fuzz-logs/$target.log
  mkdir -p "$work" "$findings" "$(dirname "$log")"
  if [[ ! -x $program ]]; then
    echo "fuzz: no program $program" >"$log"
    return 1
  fi
  forgeSeeds "$target" | while read -r file; do cp -n "$file" "$work/"; done
  local dict
  dict=$(dictionary "$target")
  # New inputs go to the working corpus (first directory); the committed seeds stay read-only.
  "$program" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -close_fd_mask=3 \
    -print_final_stats=1 -artifact_prefix="$findings" ${dict:+-dict="$dict"} \
    "$work" "$src/corpus/$target" >"$log" 2>&1
}

report() {
  local target=$1 status=$2 log=$build/fuzz-logs/$1.log
  local executions
  executions=$(awk '/stat::number_of_executed_units/ {print $2}' "$log")
  printf 'fuzz %-10s %10s executions in %ss' "$target" "${executions:-?}" "$seconds"
  if [[ $status -eq 0 ]]; then
    echo
    return 0
  fi
  echo "  FINDING"
  grep -E 'ERROR|SUMMARY|inconsistent|Test unit written' "$log" | head -n 8 | sed 's/^/    /'
  echo "    reproduce: $build/tests/fuzz/fuzz_$target <file>; keep the file under tests/fuzz/regressions/$target/"
  return 1
}

failed=0
pending=("${targets[@]}")
while [[ ${#pending[@]} -gt 0 ]]; do
  batch=("${pending[@]:0:$jobs}")
  pending=("${pending[@]:$jobs}")
  pids=()
  for target in "${batch[@]}"; do
    runOne "$target" &
    pids+=($!)
  done
  for i in "${!batch[@]}"; do
    wait "${pids[$i]}"
    report "${batch[$i]}" $? || failed=1
  done
done
exit $failed
