#!/bin/sh
# Runs a test inside a D-Bus session of its own with a new, unlocked GNOME keyring in a
# temporary home, so that no user's keyring is read or changed. Without dbus-run-session or
# gnome-keyring-daemon the test runs as it is and skips its keyring cases.
set -eu
if ! command -v dbus-run-session >/dev/null 2>&1 || ! command -v gnome-keyring-daemon >/dev/null 2>&1; then
  exec "$@"
fi
if [ -z "${ZF_KEYRING_HOME:-}" ]; then
  ZF_KEYRING_HOME=$(mktemp -d)
  export ZF_KEYRING_HOME
  status=0
  dbus-run-session -- "$0" "$@" || status=$?
  rm -rf "$ZF_KEYRING_HOME"
  exit "$status"
fi
export HOME="$ZF_KEYRING_HOME" XDG_DATA_HOME="$ZF_KEYRING_HOME/data"
export XDG_CONFIG_HOME="$ZF_KEYRING_HOME/config" XDG_RUNTIME_DIR="$ZF_KEYRING_HOME/run"
mkdir -p "$XDG_DATA_HOME" "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
# The daemon creates the login keyring with this password and leaves it unlocked. A machine
# where it cannot start skips; once it runs, every failure is the test's.
if printf 'zf-test' | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1; then
  export ZF_TEST_KEYRING=1
else
  export ZF_TEST_KEYRING_SKIP="gnome-keyring-daemon did not start"
fi
exec "$@"
