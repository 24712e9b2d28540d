#!/usr/bin/env bash
# about: copy a tree of 20,000 small files in 2,000 folders through the operation engine vs cp -a
source "$(dirname "$0")/support/fileop.sh"

make_work copy-tree
describe "copy-tree: a tree of 20,000 files (100 to 4,000 bytes) in 2,000 folders, copied whole"
echo "Atrium: atrium-fileop --engine copy = one batch of the operation engine (measuring pass,"
echo "  worker, progress polling every 0.1 s), as a paste does it."
echo "Each round copies to new names; a sync before each command keeps the previous copy's"
echo "write-back out of the next measurement."

make_tree "$WORK/source" 2000 10
du -s "$WORK/source" >/dev/null

PREPARE_EACH=sync
prepare_round() { :; }
command_for() {
  case $1 in
    atrium) echo "$FILEOP --engine copy $WORK/source $WORK/copy-atrium-$2" ;;
    "cp -a") echo "cp -a $WORK/source $WORK/copy-cp-$2" ;;
  esac
}

run_rounds 8 atrium "cp -a"
diff -r "$WORK/source" "$WORK/copy-atrium-1" >/dev/null || { echo "bench: the copy differs" >&2; exit 1; }
report copy-tree atrium "cp -a"
