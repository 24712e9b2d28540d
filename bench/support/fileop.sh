# Shared by the file-operation benchmarks (copy-tree, copy-file, trash, delete); sourced, not run.
#
# The machines are small virtual machines, so the commands compared run in alternating rounds,
# one hyperfine run each, rather than all of A and then all of B: freed memory comes back slowly,
# and a long run of one command would slow the other. The order turns each round (A B, B A, ...)
# so that neither always runs right after the round's preparation. Round 0 warms up and is not
# counted. These commands destroy or fill what they are given, so every round works on fresh
# inputs and writes to fresh names; ext4 creates files slowly for minutes after a mass deletion,
# so no tree is deleted before the end.

set -euo pipefail
export LC_ALL=C.UTF-8

: "${ATRIUM_BUILD:?run this through scripts/bench}"
FILEOP="$ATRIUM_BUILD/bench/atrium-fileop"
[ -x "$FILEOP" ] || { echo "bench: $FILEOP is missing; build with -DATRIUM_BENCHMARKS=ON" >&2; exit 1; }
command -v hyperfine >/dev/null 2>&1 || { echo "bench: hyperfine is missing" >&2; exit 1; }

# make_work NAME: a fresh work folder under $ATRIUM_BENCH_DIR (default /tmp), removed at the end
# (with BENCH_KEEP=FILE, the raw times are copied to FILE first).
make_work() {
  WORK=$(mktemp -d "${ATRIUM_BENCH_DIR:-/tmp}/atrium-bench-$1.XXXXXX")
  trap '[ -n "${BENCH_KEEP:-}" ] && cp "$WORK/times.tsv" "$BENCH_KEEP"; rm -rf "$WORK"' EXIT
  : >"$WORK/times.tsv"
}

# describe TEXT: the header every benchmark prints first.
describe() {
  echo "$1"
  echo "file system: $(stat -f -c %T "$WORK") ($WORK), locale: $LC_ALL, $(nproc) cores"
}

# make_tree DIR FOLDERS FILES_PER_FOLDER: DIR with FOLDERS folders (up to 50 per top folder, the
# rest one level down) holding FILES_PER_FOLDER small files each (100 to 4,000 bytes).
make_tree() {
  local dir=$1 folders=$2 files=$3 chunk a b d f n made=0
  chunk=$(head -c 3000 /dev/urandom | base64 -w0)
  mkdir -p "$dir"
  for ((a = 1; made < folders; a++)); do
    for ((b = 0; b < 50 && made < folders; b++)); do
      if ((b == 0)); then d="$dir/d$a"; else d="$dir/d$a/s$b"; fi
      mkdir -p "$d"
      for ((f = 0; f < files; f++)); do
        n=$(((a * 131 + b * 17 + f * 7919) % 3900 + 100))
        printf '%s' "${chunk:0:n}" >"$d/f$f.txt"
      done
      made=$((made + 1))
    done
  done
}

# run_rounds ROUNDS LABEL...: for each round R from 0 to ROUNDS, calls `prepare_round R` (not
# timed), then runs `command_for LABEL R` once for each label, in an order that turns by one
# label each round, under hyperfine. Before each command hyperfine runs, untimed,
# `prepare_for LABEL R` when the script defines that function, else $PREPARE_EACH if set. The
# times of rounds 1..ROUNDS go to $WORK/times.tsv as "LABEL<TAB>seconds".
run_rounds() {
  # The helper's own names begin with "_": the scripts' functions see them (bash scopes
  # dynamically), and must not find their own variables shadowed.
  local _rounds=$1 _round _label _k
  shift
  local _labels=("$@") _count=$#
  for ((_round = 0; _round <= _rounds; _round++)); do
    prepare_round "$_round"
    local _args=() _prepares=()
    for ((_k = 0; _k < _count; _k++)); do
      _label=${_labels[$(((_k + _round) % _count))]}
      _args+=(--command-name "$_label" "$(command_for "$_label" "$_round")")
      if declare -F prepare_for >/dev/null; then
        _prepares+=(--prepare "$(prepare_for "$_label" "$_round")")
      fi
    done
    if ((${#_prepares[@]} == 0)) && [ -n "${PREPARE_EACH:-}" ]; then
      _prepares=(--prepare "$PREPARE_EACH")
    fi
    if ! hyperfine --runs 1 --style none --export-json "$WORK/round.json" "${_prepares[@]}" \
      "${_args[@]}" >"$WORK/hyperfine.log" 2>&1; then
      echo "bench: a command failed in round $_round:" >&2
      cat "$WORK/hyperfine.log" >&2
      exit 1
    fi
    if ((_round > 0)); then
      jq -r '.results[] | [.command, .times[0]] | @tsv' "$WORK/round.json" >>"$WORK/times.tsv"
    fi
  done
}

median_of() {
  awk -F '\t' -v label="$1" '$1 == label { print $2 }' "$WORK/times.tsv" | sort -g |
    awk '{ v[NR] = $1 } END { if (NR == 0) print "nan"; else if (NR % 2) print v[(NR + 1) / 2]; else print (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# report NAME ATRIUM_LABEL ANCHOR_LABEL [OTHER_LABEL...]: the table of medians, then the one
# closing line "NAME ratio R" (Atrium's median over the anchor's).
report() {
  local name=$1 atrium=$2 anchor=$3 label
  shift
  echo
  printf '%-36s %10s %10s %10s %5s\n' "command" "median s" "min s" "max s" "runs"
  for label in "$@"; do
    awk -F '\t' -v label="$label" -v median="$(median_of "$label")" '
      $1 == label { n++; if (n == 1 || $2 < lo) lo = $2; if (n == 1 || $2 > hi) hi = $2 }
      END { printf "%-36s %10.4f %10.4f %10.4f %5d\n", label, median, lo, hi, n }' "$WORK/times.tsv"
  done
  echo
  awk -v a="$(median_of "$atrium")" -v b="$(median_of "$anchor")" -v name="$name" \
    'BEGIN { printf "%s ratio %.3f\n", name, a / b }'
}
