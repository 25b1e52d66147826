#!/usr/bin/env bash
# Runs the JUnit host tests against the built library, on a virtual X server when no display
# is given.
# usage: run.sh JAVA JUNIT_STANDALONE_JAR LIBRARY_DIR CLASSPATH [JVM OPTION...]
set -uo pipefail
if [ -z "${DISPLAY:-}" ] && [ -z "${WEXEL_UNDER_XVFB:-}" ] && command -v xvfb-run >/dev/null; then
  WEXEL_UNDER_XVFB=1 exec xvfb-run -a -s "-screen 0 1024x768x24" "$0" "$@"
fi
java=$1 junit=$2 libdir=$3 classpath=$4
shift 4
log=$(mktemp)
# The dumps of the tests' faults go to a folder of their own.
dumps=$(mktemp -d)
trap 'rm -rf "$log" "$dumps"' EXIT

"$java" -Djava.library.path="$libdir" -Djava.io.tmpdir="$dumps" -Dwexel.classpath="$classpath" "$@" -jar "$junit" \
  --class-path "$classpath" --scan-class-path --disable-banner --disable-ansi-colors --details=tree \
  --exclude-classname='.*\$.*' >"$log" 2>&1
status=$?
cat "$log"
# The JVM's notices that the library installed its fault handlers are expected; any other JNI
# warning is a fault of ours.
warnings=$(awk '/^Warning: SIG[A-Z]+ handler modified!$/ {notice = 1}
                !notice && tolower($0) ~ /warning/ {print}
                /^Consider using jsig library\.$/ {notice = 0}' "$log")
if [ -n "$warnings" ]; then
  echo "unexpected JVM warnings:"
  echo "$warnings"
  exit 1
fi
exit $status
