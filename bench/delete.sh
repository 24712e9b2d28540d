#!/usr/bin/env bash
# about: delete a tree of 20,000 small files in 2,000 folders through the operation engine vs rm -rf
source "$(dirname "$0")/support/fileop.sh"

make_work delete
describe "delete: a tree of 20,000 files (100 to 4,000 bytes) in 2,000 folders, removed whole"
echo "Atrium: atrium-fileop --engine remove = one batch of the operation engine (as Delete Immediately)."
echo "All trees are copied before the first deletion (ext4 creates files slowly after a mass"
echo "deletion); each round reads its two trees' status right before they are deleted."

rounds=8
make_tree "$WORK/source" 2000 10
for ((r = 0; r <= rounds; r++)); do
  cp -a "$WORK/source" "$WORK/tree-atrium-$r"
  cp -a "$WORK/source" "$WORK/tree-rm-$r"
done
sync

prepare_round() { du -s "$WORK/tree-atrium-$1" "$WORK/tree-rm-$1" >/dev/null; }
command_for() {
  case $1 in
    atrium) echo "$FILEOP --engine remove $WORK/tree-atrium-$2" ;;
    "rm -rf") echo "rm -rf $WORK/tree-rm-$2" ;;
  esac
}

run_rounds "$rounds" atrium "rm -rf"
[ ! -e "$WORK/tree-atrium-1" ] || { echo "bench: the tree is still there" >&2; exit 1; }
report delete atrium "rm -rf"
