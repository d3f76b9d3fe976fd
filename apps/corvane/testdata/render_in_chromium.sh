#!/bin/sh
# Renders an HTML page in headless Chromium and fails when the screenshot is missing or
# blank or when the page logged anything to the console (the report has no script, so any
# console message is an error: a resource it could not load, a parse problem).
# usage: render_in_chromium.sh PAGE SCREENSHOT
# Exit status 77 (the test is skipped) when chromium is not installed.
page=$1
screenshot=$2
if ! command -v chromium >/dev/null 2>&1; then
  echo "chromium is not installed, so the HTML report is not rendered; scripts/setup installs it"
  exit 77
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
rm -f "$screenshot"
# A private profile, so that a developer's running browser is neither used nor disturbed.
profile=$(mktemp -d)
trap 'rm -f "$log"; rm -rf "$profile"' EXIT
chromium --headless --no-sandbox --disable-gpu --user-data-dir="$profile" --no-first-run \
  --screenshot="$screenshot" --window-size=1200,2000 --enable-logging=stderr --v=0 \
  "file://$(realpath "$page")" 2>"$log"
status=$?
if [ $status -ne 0 ]; then
  cat "$log"
  echo "chromium failed with status $status"
  exit 1
fi
if grep -E "CONSOLE|Uncaught" "$log"; then
  echo "the page logged the console messages above"
  exit 1
fi
exec python3 "$(dirname "$0")/check_png.py" "$screenshot"
