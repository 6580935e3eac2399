#!/usr/bin/env bash
# Sets up, builds and starts Tolvane on the simulated transceiver, connected,
# unless a radio's port is remembered from an earlier run (then that port is
# chosen as usual). Arguments are passed to the program.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [ -x build/src/desktop/tolvane ]; then
  exec build/src/desktop/tolvane --try-simulator "$@"
fi
echo "The desktop program is not part of this build yet; the core and its tests are built in build/."
