#!/usr/bin/env bash
# about: trash 10,000 files through the operation engine vs gio trash
source "$(dirname "$0")/support/fileop.sh"
command -v gio >/dev/null 2>&1 || { echo "bench: gio is missing (package libglib2.0-bin)" >&2; exit 1; }

make_work trash
describe "trash: 10,000 files of one folder moved to the home trash (freedesktop.org Trash)"
echo "Atrium: atrium-fileop --engine trash = one batch of 10,000 trash items of the operation engine."
echo "Both get the same 10,000 absolute paths as arguments, and a fresh XDG_DATA_HOME (so a"
echo "fresh, empty home trash on the same file system) in every round."

count=10000
PREPARE_EACH=sync
prepare_round() {
  local label
  for label in atrium gio; do
    mkdir -p "$WORK/items-$label-$1"
    (cd "$WORK/items-$label-$1" && for ((i = 0; i < count; i++)); do printf 'item %d\n' "$i" >"file-$i.txt"; done)
  done
}
command_for() {
  case $1 in
    atrium) echo "XDG_DATA_HOME=$WORK/data-atrium-$2 $FILEOP --engine trash $WORK/items-atrium-$2/*" ;;
    "gio trash") echo "XDG_DATA_HOME=$WORK/data-gio-$2 gio trash $WORK/items-gio-$2/*" ;;
  esac
}

run_rounds 8 atrium "gio trash"
[ "$(ls "$WORK/data-atrium-1/Trash/files" | wc -l)" = "$count" ] || { echo "bench: not all trashed" >&2; exit 1; }
report trash atrium "gio trash"
