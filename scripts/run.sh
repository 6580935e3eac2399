#!/usr/bin/env bash
# Sets up, builds and starts Tolvane. Pick "Simulated transceiver" in the port
# list and press Connect to try it without a radio.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
if [ -x build/src/desktop/tolvane ]; then
  exec build/src/desktop/tolvane "$@"
fi
echo "The desktop program is not part of this build yet; the core and its tests are built in build/."
