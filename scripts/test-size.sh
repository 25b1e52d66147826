#!/usr/bin/env bash
# Lines of tests against lines of code, per subsystem and in total (wc -l of every file).
# Code: each folder under src/, and host/. A test file counts for the subsystem whose headers it
# includes most often (#include "toolkit/..." counts for src/toolkit; the first wins a tie); the
# JUnit tests (tests/host) count for host/; a file that includes none of them (harness headers,
# build files, scripts) counts as shared.
set -euo pipefail
cd "$(dirname "$0")/.."
lines() { if [ $# -gt 0 ]; then cat "$@" | wc -l; else echo 0; fi; }
declare -A code tests
for dir in src/*/; do
  s=$(basename "$dir")
  mapfile -t files < <(find "$dir" -type f)
  code[$s]=$(lines "${files[@]}")
done
mapfile -t files < <(find host -type f)
code[host]=$(lines "${files[@]}")
while read -r f; do
  # Recorded images and other binary files are data, not test lines.
  grep -Iq . "$f" || continue
  case $f in
    tests/host/*) s=host ;;
    *) s=$(awk -F'"' '/^#include "[a-z0-9]+\// {
                 split($2, path, "/"); s = path[1]; if (!(s in first)) first[s] = NR; ++n[s] }
               END { for (s in n) if (n[s] > most || (n[s] == most && first[s] < at)) { most = n[s]; at = first[s]; best = s }
                     print best }' "$f") ;;
  esac
  [ -n "$s" ] && [ -n "${code[$s]:-}" ] || s=shared
  tests[$s]=$(( ${tests[$s]:-0} + $(wc -l < "$f") ))
done < <(find tests -type f | sort)
printf '%-10s %7s %7s %7s\n' "" tests code ratio
alltests=0 allcode=0
for s in $(printf '%s\n' "${!code[@]}" | sort) shared; do
  t=${tests[$s]:-0} c=${code[$s]:-0}
  alltests=$((alltests + t)) allcode=$((allcode + c))
  ratio=$([ "$c" -gt 0 ] && awk -v t="$t" -v c="$c" 'BEGIN {printf "%.2f", t / c}' || echo -)
  printf '%-10s %7d %7d %7s\n' "$s" "$t" "$c" "$ratio"
done
printf '%-10s %7d %7d %7s\n' total "$alltests" "$allcode" "$(awk -v t=$alltests -v c=$allcode 'BEGIN {printf "%.2f", t / c}')"
