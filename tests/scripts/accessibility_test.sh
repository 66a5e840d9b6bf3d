#!/usr/bin/env bash
# What a screen reader reads of the desktop program, through the real
# accessibility bus under an X server with a window manager, and a pause
# and resume done with the keyboard alone. Skipped (77) without the tools.
# Usage: accessibility_test.sh DESKTOP_PROGRAM (inside a session bus and X server)
set -uo pipefail
desktop=$1
here=$(dirname "$0")
launcher=/usr/libexec/at-spi-bus-launcher
for tool in openbox xdotool "$launcher"; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: no $tool"
        exit 77
    fi
done
if ! /usr/bin/python3 -c 'import pyatspi' 2>/dev/null; then
    echo "skipped: no pyatspi"
    exit 77
fi
source "$here/private_home.sh"
export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
# Qt's accessibility bridge keeps what it made for screen readers until the
# process ends; the other tests look for leaks.
export ASAN_OPTIONS=detect_leaks=0

openbox >/dev/null 2>&1 &
pids+=($!)
"$launcher" --launch-immediately >/dev/null 2>&1 &
pids+=($!)
# A sleeper of the test's own, under a name of its own, for the keyboard to pause.
cp /bin/sleep "$scratch/a11y-target"
"$scratch/a11y-target" 600 &
target=$!
pids+=($target)
sleep 1
/usr/bin/python3 "$here/accessibility_check.py" "$desktop" "$target" a11y-target
