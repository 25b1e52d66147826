#!/usr/bin/env bash
# The library's dynamic symbol table holds the host's JNI entry points and nothing else.
set -euo pipefail
library=$1
defined=$(nm -D --defined-only "$library" | awk '$2 ~ /^[TtWwDdBbRr]$/ {print $3}')
[ -n "$defined" ] || { echo "no symbols read from $library"; exit 1; }
bad=0
while read -r name; do
  case "$name" in
    Java_*) ;;                               # plain JNI entry points
    _Z*Java_fa_K*|_Z*Java_h_aa*|_Z*SSEGROUND_GETH*|_Z*SSEGROUND_GETAVH*) ;;  # the decorated four
    _init|_fini|_edata|_end|__bss_start) ;;  # the linker's own
    *) echo "unexpected export: $name"; bad=1 ;;
  esac
done <<< "$defined"
for probe in Java_ja_q Java_ja_B Java_za_n; do
  grep -qx "$probe" <<< "$defined" || { echo "missing export: $probe"; bad=1; }
done
# The decorated entry points must never be reachable by their plain JNI names.
for plain in Java_fa_K Java_h_aa SSEGROUND_GETH SSEGROUND_GETAVH; do
  grep -qx "$plain" <<< "$defined" && { echo "plain export of $plain"; bad=1; }
done
[ $bad -eq 0 ] && echo "exports: $(wc -l <<< "$defined") symbols, all host entry points"
exit $bad
