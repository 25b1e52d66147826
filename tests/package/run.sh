#!/usr/bin/env bash
# Makes the Debian package, unpacks it into a scratch root and runs the README's host against the
# unpacked library and jar only; what it prints must be what the README says it prints.
# usage: run.sh BUILD_DIR README JAVAC JAVA
set -euo pipefail
build=$1 readme=$2 javac=$3 java=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

(cd "$work" && cpack --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$work"/out/*.deb)
depends=$(dpkg-deb -f "$deb" Depends)
for wanted in libx11-6 libuuid1 libstdc++6; do
  [[ $depends == *"$wanted"* ]] || { echo "the package does not depend on $wanted: $depends"; exit 1; }
done
dpkg -x "$deb" "$work/root"
lib=$work/root/usr/lib/jni jar=$work/root/usr/share/java/wexelhost.jar
[ -f "$lib/libwexel.so" ] && [ -f "$jar" ] || { echo "the package lacks the library or the jar:"; find "$work/root"; exit 1; }

# The first java block of the README is the host; the text block after it is its output.
mkdir "$work/host"
awk '/^```java$/ {on = 1; next} on && /^```$/ {exit} on' "$readme" >"$work/host/Hello.java"
awk '/^```java$/ {seen = 1} seen && /^```text$/ {on = 1; next} on && /^```$/ {exit} on' "$readme" >"$work/expected"
"$javac" -cp "$jar" -d "$work/host" "$work/host/Hello.java"
"$java" -Djava.awt.headless=true -Djava.library.path="$lib" -cp "$jar:$work/host" Hello >"$work/actual"
diff -u "$work/expected" "$work/actual" || { echo "the README's host printed otherwise than the README says"; exit 1; }
