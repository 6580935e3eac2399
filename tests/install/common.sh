# Shared by the install checks: a scratch folder ($work) removed on exit,
# with the background program ($pid) stopped first, and fail().
work=$(cd "$(mktemp -d)" && pwd -P)
pid=
cleanup() {
  if [ -n "$pid" ]; then kill "$pid" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "FAIL: $*" >&2
  exit 1
}
