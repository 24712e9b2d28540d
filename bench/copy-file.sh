#!/usr/bin/env bash
# about: copy one 1 GiB file through the operation engine vs cp --reflink=never (and =always)
source "$(dirname "$0")/support/fileop.sh"

make_work copy-file
describe "copy-file: one file of 1 GiB of random bytes, in the page cache, copied in one folder"
echo "Atrium: atrium-fileop --engine copy = one batch of the operation engine (reflink, else"
echo "  copy_file_range, else read/write). Each command copies to a new name; before it, untimed,"
echo "  its copy of the previous round is removed and everything is synced."

head -c 1G /dev/urandom >"$WORK/big.bin"
# Plain cp (reflink=auto) is shown for reference: it may use copy_file_range, which
# --reflink=never avoids.
labels=(atrium "cp --reflink=never" cp)
head -c 4096 /dev/urandom >"$WORK/probe"
if cp --reflink=always "$WORK/probe" "$WORK/probe-clone" 2>/dev/null; then
  labels+=("cp --reflink=always")
else
  echo "reflink: not supported by this file system; cp --reflink=always is left out"
fi

# Memory freed on these machines goes back to the host after a while and is slow to get again,
# and a 1 GiB copy needs 1 GiB of page cache. So right before each command its own copy of the
# previous round is removed (and everything written out): each command then finds the same
# memory free, and the disk holds at most two copies per command.
tag_of() {
  case $1 in
    atrium) echo atrium ;;
    "cp --reflink=never") echo never ;;
    cp) echo auto ;;
    "cp --reflink=always") echo always ;;
  esac
}
prepare_round() { cat "$WORK/big.bin" >/dev/null; }
prepare_for() { echo "rm -f $WORK/copy-$(tag_of "$1")-$(($2 - 1)); sync"; }
command_for() {
  local options=""
  case $1 in
    "cp --reflink=never") options="--reflink=never " ;;
    "cp --reflink=always") options="--reflink=always " ;;
  esac
  case $1 in
    atrium) echo "$FILEOP --engine copy $WORK/big.bin $WORK/copy-atrium-$2" ;;
    *) echo "cp $options$WORK/big.bin $WORK/copy-$(tag_of "$1")-$2" ;;
  esac
}

run_rounds 12 "${labels[@]}"
cmp "$WORK/big.bin" "$WORK/copy-atrium-12" || { echo "bench: the copy differs" >&2; exit 1; }
report copy-file atrium "${labels[@]:1}"
