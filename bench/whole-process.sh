#!/usr/bin/env bash
# Times qbx commands as a user runs them: whole processes, warm cache, wall
# time and peak resident size from GNU time, median of several runs.
#
#   bench/whole-process.sh [QBX] [SIZES...]
#
# QBX defaults to build/qbx; SIZES to "100000 1000000". The documents are made
# by `qbx generate --items N --seed 7` in a scratch folder (BENCH_DIR, default a
# fresh temporary folder, removed at the end unless BENCH_DIR was given).
# RUNS (default 3) sets how many runs the median is taken over.
set -euo pipefail

here="$(cd "$(dirname "$0")/.." && pwd)"
qbx="${1:-$here/build/qbx}"
shift || true
sizes=("$@")
[ ${#sizes[@]} -gt 0 ] || sizes=(100000 1000000)
runs="${RUNS:-3}"
gnutime=/usr/bin/time

[ -x "$qbx" ] || { echo "whole-process: no qbx at $qbx (build the qbx target first)" >&2; exit 2; }
[ -x "$gnutime" ] || { echo "whole-process: GNU time is missing (scripts/setup installs it)" >&2; exit 2; }

if [ -n "${BENCH_DIR:-}" ]; then
  work="$BENCH_DIR"
  mkdir -p "$work"
else
  work="$(mktemp -d)"
  trap 'rm -rf "$work"' EXIT
fi

# Settings come from a scratch home, so the user's own code page or encoding
# choices never change what is measured.
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config"
mkdir -p "$XDG_CONFIG_HOME"

# One run of a command: prints "wall-seconds cpu-seconds kilobytes".
measure() {
  local log="$work/time.log"
  "$gnutime" -v -o "$log" "$@" >/dev/null 2>"$work/stderr.log" || {
    echo "whole-process: failed: $*" >&2
    cat "$work/stderr.log" >&2
    exit 1
  }
  local wall user system rss
  wall="$(sed -n 's/^.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$log")"
  user="$(sed -n 's/^.*User time (seconds): //p' "$log")"
  system="$(sed -n 's/^.*System time (seconds): //p' "$log")"
  rss="$(sed -n 's/^.*Maximum resident set size (kbytes): //p' "$log")"
  # The wall time reads m:ss.cc or h:mm:ss.
  awk -v w="$wall" -v u="$user" -v s="$system" -v r="$rss" 'BEGIN {
    n = split(w, p, ":"); t = 0;
    for (i = 1; i <= n; ++i) t = t * 60 + p[i];
    printf "%.3f %.3f %d\n", t, u + s, r }'
}

# The median of runs of a command, each column on its own: prints
# "wall s cpu s megabytes MB".
median() {
  local results=()
  for ((i = 0; i < runs; ++i)); do
    results+=("$(measure "$@")")
  done
  local mid=$(( (runs + 1) / 2 ))
  local column values=()
  for column in 1 2 3; do
    values+=("$(printf '%s\n' "${results[@]}" | cut -d' ' -f$column | sort -n | sed -n "${mid}p")")
  done
  printf '%.2f s %.2f s %d MB\n' "${values[0]}" "${values[1]}" $(( values[2] / 1024 ))
}

printf 'Medians of %d runs.\n\n| Document | Command | Wall | CPU (user + system) | Peak resident |\n|---|---|---|---|---|\n' "$runs"
for n in "${sizes[@]}"; do
  doc="$work/bench-$n.qbx"
  [ -f "$doc" ] || "$qbx" generate --items "$n" --seed 7 "$doc" >/dev/null
  size_mb=$(( $(stat -c %s "$doc") / 1024 / 1024 ))
  label="$n items ($size_mb MB)"
  # Warm the cache once, so every run reads from memory, as a user's second open does.
  cat "$doc" >/dev/null

  read -r t _ c _ r _ <<<"$(median "$qbx" check "$doc")"
  printf '| %s | qbx check | %s s | %s s | %s MB |\n' "$label" "$t" "$c" "$r"

  cp "$doc" "$work/resave.qbx"
  read -r t _ c _ r _ <<<"$(median "$qbx" resave "$work/resave.qbx")"
  printf '| %s | qbx resave | %s s | %s s | %s MB |\n' "$label" "$t" "$c" "$r"
  rm -f "$work/resave.qbx"

  read -r t _ c _ r _ <<<"$(median "$qbx" export xml "$doc" "$work/out.xml")"
  printf '| %s | qbx export xml | %s s | %s s | %s MB |\n' "$label" "$t" "$c" "$r"
  rm -f "$work/out.xml"

  read -r t _ c _ r _ <<<"$(median "$qbx" export view "$doc" "$work/out.txt")"
  printf '| %s | qbx export view | %s s | %s s | %s MB |\n' "$label" "$t" "$c" "$r"
  rm -f "$work/out.txt"
done
