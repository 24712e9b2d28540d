#!/usr/bin/env bash
# about: list and sort folders of 10,000 and 100,000 files through the file entry, against ls -l
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
source "$here/support/alternate.sh"
build=${ATRIUM_BUILD:-$here/../build}
prog="$build/bench/atrium-list"
data=${ATRIUM_BENCH_DIR:-/tmp/atrium-bench-list}
export LC_ALL=C.UTF-8

source "$here/support/folders.sh"

echo "locale: $LC_ALL   file system: $(stat -f -c %T /tmp)   $(nproc) cores"
make_folder 10000
make_folder 100000

for n in 10000 100000; do
  for column in name modified; do
    bench_alternate 9 "atrium list+sort $n by $column" "'$prog' '$data/$n' --column $column" \
      "ls -l $n" "ls -l --color=never '$data/$n'"
    if [ "$n" = 100000 ] && [ "$column" = name ]; then
      ratio=$(bench_ratio "$BENCH_MEDIAN_A" "$BENCH_MEDIAN_B")
    fi
  done
done

echo
echo "One listing of 100,000 entries in detail:"
"$prog" "$data/100000" --column name --report

echo
if command -v strace >/dev/null 2>&1; then
  # A second prepare(false) must not touch the disk: count the file system calls the tracer sees
  # between the program's two markers.
  trace=$(mktemp)
  strace -f -o "$trace" -e trace=%file,%desc "$prog" "$data/10000" --report >/dev/null 2>&1
  calls=$(awk '/second prepare begins/ { on = 1; next } /second prepare ends/ { on = 0 } on && !/^[0-9]+ +write\(2,/ { n++ } END { print n + 0 }' "$trace")
  rm -f "$trace"
  echo "file system calls during a second prepare(false): $calls"
fi
echo "list ratio $ratio"
