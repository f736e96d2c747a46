#!/usr/bin/env bash
# Takes docs/screenshot-main.png (the desktop program on the demo collection), the header
# editor's docs/screenshot-header.png and the dialog pictures docs/screenshot-patch.png and
# docs/screenshot-report.png, under Xvfb, with settings kept in the build folder so a
# developer's own are never touched.
# Usage: tools/screenshot.sh [BUILD_DIR]   (default build/default)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/default}
tool=$build/src/cli/romsteward-tool
program=$build/src/ui/romsteward
work=$build/screenshot
out=docs/screenshot-main.png
display=:${SCREENSHOT_DISPLAY:-97}

rm -rf "$work" && mkdir -p "$work"
"$tool" demo "$work/demo" > /dev/null
settings=$work/settings.sqlite3
for pair in "dir0 $PWD/$work/demo" "LaunchX 0" "LaunchY 0" "Genem /usr/games/genem"; do
  "$tool" --settings "$settings" settings set Settings ${pair%% *} "${pair#* }" > /dev/null
done

Xvfb "$display" -screen 0 1024x700x24 -nolisten tcp > /dev/null 2>&1 &
xvfb=$!
trap 'kill "$program_pid" "$xvfb" 2> /dev/null || true' EXIT
program_pid=
for _ in $(seq 50); do [ -e "/tmp/.X11-unix/X${display#:}" ] && break; sleep 0.1; done

DISPLAY=$display QT_QPA_PLATFORM=xcb "$program" --settings "$settings" &
program_pid=$!
# The id of the first window whose title matches $1, waiting up to ten seconds for it.
find_window() {
  local found
  for _ in $(seq 100); do
    found=$(DISPLAY=$display xdotool search --name "$1" 2> /dev/null | head -n1) && [ -n "$found" ] && { echo "$found"; return; }
    sleep 0.1
  done
  echo "screenshot: no window titled $1 appeared" >&2
  return 1
}
window=$(find_window '^Genesis Romsteward')
sleep 1
# Select a cartridge so the panel shows what a user sees: the first entry (under the
# toolbar), then two down.
DISPLAY=$display xdotool mousemove --window "$window" 60 72 click 1
DISPLAY=$display xdotool key --window "$window" Down Down
sleep 1
DISPLAY=$display import -window "$window" "$out"
echo "Wrote $out"

# The header editor of the same cartridge, opened from Tools with the keyboard.
header_out=docs/screenshot-header.png
DISPLAY=$display xdotool key --window "$window" alt+t h
dialog=$(find_window '^Header of')
sleep 1
DISPLAY=$display import -window "$dialog" "$header_out"
echo "Wrote $header_out"

# The dialogs, one picture each, on the same display and demo collection.
shots=$build/src/ui/romsteward-dialog-shots
DISPLAY=$display QT_QPA_PLATFORM=xcb "$shots" "$work/demo" "$settings" docs
