#!/usr/bin/env bash
# A serial device the user may not open: the program says so in its console
# log with the exact command that fixes it. The test makes a device node that
# only the group "dialout" may use and starts the program as a user outside
# that group ("nobody" when the test runs as root); without root rights, a
# file the test made unreadable stands in for the node.
set -euo pipefail
program=$1
. "$(dirname "$0")/common.sh"

chmod 755 "$work"
device=$work/ttyTV0
mkdir -p "$work/home"
if [ "$(id -u)" -eq 0 ]; then
  mknod -m 660 "$device" c 1 3
  chgrp dialout "$device"
  chown nobody "$work/home"
  user=nobody
  group=dialout
  run=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
else
  : >"$device"
  chmod 000 "$device"
  user=$(id -un)
  group=$(id -gn)
  run=()
fi

HOME=$work/home XDG_CONFIG_HOME=$work/home/config XDG_DATA_HOME=$work/home/data XDG_RUNTIME_DIR=$work/home \
  QT_QPA_PLATFORM=offscreen "${run[@]}" "$program" --port "$device" --connect >"$work/stdout" 2>"$work/stderr" &
pid=$!
expected="Tolvane may not open $device: permission denied. The port belongs to the group \"$group\"; add your user to it with the command \"sudo usermod -aG $group $user\", then log out and log in again."
for _ in $(seq 1 200); do
  if grep -qxF -- "$expected" "$work/stdout"; then break; fi
  kill -0 "$pid" 2>/dev/null || fail "the program ended early: $(cat "$work/stderr")"
  sleep 0.1
done
grep -qxF -- "$expected" "$work/stdout" || fail "no permission message; the log says:
$(cat "$work/stdout")
$(cat "$work/stderr")"
echo "$expected"
