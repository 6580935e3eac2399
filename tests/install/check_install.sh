#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks what a desktop needs:
# every file in its place, a launcher and a software-centre entry that the
# desktop's own validators accept, and the installed program starting on its
# installed files, alone and with the simulated transceiver.
set -euo pipefail
build=$1
version=$2
. "$(dirname "$0")/common.sh"

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >"$work/install.log" || fail "cmake --install: $(cat "$work/install.log")"

for f in bin/tolvane bin/tolvane-sim; do
  [ -x "$prefix/$f" ] || fail "$f is not installed as a program"
done
# Sounds and speech, the network, the log's file and keyring, and the serial
# ports are modules of their own, beside the program's libraries; the program
# itself links none of their libraries.
for name in media network store serial; do
  module=$(find "$prefix" -name "libtolvane-$name.so")
  [ -n "$module" ] || fail "the $name module is not installed"
  case "$module" in "$prefix"/lib*/tolvane/libtolvane-$name.so) ;; *) fail "the module is installed at $module" ;; esac
done
needed=$(readelf -d "$prefix/bin/tolvane" | grep NEEDED)
for lib in Qt6Network Qt6SerialPort Qt6Sql qt6keychain libudev libsqlite3 Qt6Multimedia Qt6TextToSpeech libsndfile; do
  if grep -q "$lib" <<<"$needed"; then fail "the program links $lib: $needed"; fi
done
for f in share/tolvane/Sounds/Seatbelts.aiff share/tolvane/Sounds/System-Bottle.aiff \
  share/tolvane/Sounds/System-Frog.aiff share/tolvane/docs/manual.md \
  share/applications/org.tolvane.Tolvane.desktop \
  share/icons/hicolor/scalable/apps/org.tolvane.Tolvane.svg \
  share/metainfo/org.tolvane.Tolvane.metainfo.xml share/doc/tolvane/copyright; do
  [ -s "$prefix/$f" ] || fail "$f is not installed"
done

launcher=$prefix/share/applications/org.tolvane.Tolvane.desktop
report=$(desktop-file-validate "$launcher" 2>&1) || fail "desktop-file-validate: $report"
[ -z "$report" ] || fail "desktop-file-validate warns: $report"
grep -qx 'Exec=tolvane' "$launcher" || fail "the launcher does not start tolvane"
grep -qx 'Icon=org.tolvane.Tolvane' "$launcher" || fail "the launcher does not name the installed icon"
metainfo=$prefix/share/metainfo/org.tolvane.Tolvane.metainfo.xml
report=$(appstreamcli validate --no-net "$metainfo" 2>&1) || fail "appstreamcli validate: $report"
grep -q '<project_license>GPL-3.0-or-later</project_license>' "$metainfo" || fail "metainfo licence"
grep -q '<launchable type="desktop-id">org.tolvane.Tolvane.desktop</launchable>' "$metainfo" ||
  fail "metainfo does not launch the installed launcher"
grep -q '<image>https://' "$metainfo" || fail "metainfo has no screenshot"

# The installed program finds its files beside itself, not in the source tree.
out=$(env -u TOLVANE_DATA_DIR -u TOLVANE_SOUNDS_DIR "$prefix/bin/tolvane" --version)
expected="Tolvane $version
Licence: GNU General Public License, version 3 or later (GPL-3.0-or-later)
Files: $prefix/share/tolvane"
[ "$out" = "$expected" ] || fail "--version printed:
$out
expected:
$expected"

# Started with the simulated transceiver, it connects; the settings go to a
# configuration folder of the test's own. With sounds on, the installed
# program loads its sounds-and-speech module once the window is shown, and
# its network and store modules after that.
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
mkdir -p "$work/config/Tolvane"
printf '[General]\nsounds=1\n' >"$work/config/Tolvane/Tolvane.conf"
TOLVANE_TRACE=1 "$prefix/bin/tolvane" --port "Simulated transceiver" --connect >"$work/stdout" 2>"$work/stderr" &
pid=$!
for _ in $(seq 1 300); do
  if grep -q '^trace title openCloseButton Connected ' "$work/stderr"; then break; fi
  kill -0 "$pid" 2>/dev/null || fail "the installed program ended early: $(cat "$work/stderr")"
  sleep 0.1
done
grep -q '^trace title openCloseButton Connected ' "$work/stderr" ||
  fail "the installed program did not connect to the simulated transceiver: $(cat "$work/stderr")"
# The settings file is written on the program's writer thread, just after the port opens.
for _ in $(seq 1 50); do
  grep -qsx 'defaultPort=Simulated transceiver' "$work/config/Tolvane/Tolvane.conf" && break
  sleep 0.1
done
grep -qx 'defaultPort=Simulated transceiver' "$work/config/Tolvane/Tolvane.conf" ||
  fail "the opened port was not saved: $(cat "$work/config/Tolvane/Tolvane.conf" 2>&1)"
for _ in $(seq 1 50); do
  grep -q '^trace step media ' "$work/stderr" && grep -q '^trace step store ' "$work/stderr" && break
  sleep 0.1
done
for step in media network store; do
  grep -q "^trace step $step " "$work/stderr" || fail "the installed program did not load its $step module: $(cat "$work/stdout")"
done
if grep -q ' are off: ' "$work/stdout"; then fail "$(cat "$work/stdout")"; fi
echo "installed into $prefix and started"
