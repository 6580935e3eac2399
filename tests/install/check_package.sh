#!/usr/bin/env bash
# Builds the Debian package with cpack and checks its control fields (the
# dependencies found from the linked shared libraries) and its file list.
set -euo pipefail
build=$1
version=$2
. "$(dirname "$0")/common.sh"

cpack -G DEB -B "$work" --config "$build/CPackConfig.cmake" >"$work/cpack.log" 2>&1 ||
  fail "cpack: $(cat "$work/cpack.log")"
deb=$(ls "$work"/tolvane_*.deb)
[ "$(basename "$deb")" = "tolvane_${version}_$(dpkg --print-architecture).deb" ] || fail "package file $deb"

[ "$(dpkg-deb -f "$deb" Package)" = tolvane ] || fail "package name"
[ "$(dpkg-deb -f "$deb" Version)" = "$version" ] || fail "package version"
[ "$(dpkg-deb -f "$deb" Section)" = hamradio ] || fail "section"
depends=$(dpkg-deb -f "$deb" Depends)
for lib in 'libc6 (>= ' 'libstdc++6 (>= ' libqt6core6 libqt6widgets6 libqt6serialport6 libqt6network6 libqt6dbus6 \
  libqt6texttospeech6 libqt6multimedia6 'libsndfile1 (>= ' 'libudev1 (>= '; do
  case ", $depends" in
    *", $lib"*) ;;
    *) fail "Depends lacks $lib: $depends" ;;
  esac
done
case "$depends" in
  *libgtest* | *libbenchmark* | *-dev*) fail "Depends names a build-only package: $depends" ;;
esac
[ "$(dpkg-deb -f "$deb" Recommends)" = "qt6-speech-flite-plugin, qt6-qpa-plugins" ] || fail "Recommends"

files=$(dpkg-deb -c "$deb" | awk '{print $6}')
for f in ./usr/bin/tolvane ./usr/bin/tolvane-sim ./usr/share/applications/org.tolvane.Tolvane.desktop \
  ./usr/share/icons/hicolor/scalable/apps/org.tolvane.Tolvane.svg \
  ./usr/share/metainfo/org.tolvane.Tolvane.metainfo.xml ./usr/share/tolvane/docs/manual.md \
  ./usr/share/tolvane/Sounds/System-Frog.aiff ./usr/share/doc/tolvane/copyright ./usr/lib/tolvane/libtolvane-media.so \
  ./usr/lib/tolvane/libtolvane-network.so ./usr/lib/tolvane/libtolvane-store.so ./usr/lib/tolvane/libtolvane-serial.so; do
  grep -qx -- "$f" <<<"$files" || fail "the package lacks $f"
done
if grep -E 'tests|bench|/include/|\.a$' <<<"$files"; then fail "the package carries build-only files"; fi
echo "$(basename "$deb"): Depends: $depends"
