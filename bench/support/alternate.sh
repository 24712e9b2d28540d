# Timing in alternating pairs for bench/*.sh. Source it; needs bash 5 (EPOCHREALTIME).

# Times two commands in alternating pairs (A B A B ...), which these small virtual machines need:
# memory freed by one command is slow to get back, so running all of A then all of B favours
# whichever runs second. Prints one table row per command and sets BENCH_MEDIAN_A / _B (seconds).
#   bench_alternate RUNS "label A" "command A" "label B" "command B"
bench_alternate() {
  local runs=$1 label_a=$2 cmd_a=$3 label_b=$4 cmd_b=$5
  bench_pairs bench_time "$runs" "$cmd_a" "$cmd_b"
  BENCH_MEDIAN_A=$(bench_median "${BENCH_PAIRS_A[@]}")
  BENCH_MEDIAN_B=$(bench_median "${BENCH_PAIRS_B[@]}")
  bench_row "$label_a" "$BENCH_MEDIAN_A" "${BENCH_PAIRS_A[@]}"
  bench_row "$label_b" "$BENCH_MEDIAN_B" "${BENCH_PAIRS_B[@]}"
}

# Runs both commands once to warm up (page cache, dentry cache, the programs themselves), then
# RUNS alternating pairs, each measured by MEASURE (a function given the command), into the arrays
# BENCH_PAIRS_A and BENCH_PAIRS_B.
#   bench_pairs MEASURE RUNS "command A" "command B"
bench_pairs() {
  local measure=$1 runs=$2 cmd_a=$3 cmd_b=$4
  BENCH_PAIRS_A=(); BENCH_PAIRS_B=()
  bash -c "$cmd_a" >/dev/null 2>&1; bash -c "$cmd_b" >/dev/null 2>&1
  for ((i = 0; i < runs; i++)); do
    BENCH_PAIRS_A+=("$("$measure" "$cmd_a")")
    BENCH_PAIRS_B+=("$("$measure" "$cmd_b")")
  done
}

# Seconds one run of a command takes (its output is dropped).
bench_time() {
  local start end
  start=$EPOCHREALTIME
  bash -c "$1" >/dev/null 2>&1 || { echo "bench: command failed: $1" >&2; exit 1; }
  end=$EPOCHREALTIME
  awk -v s="$start" -v e="$end" 'BEGIN { printf "%.6f", e - s }'
}

bench_median() {
  printf '%s\n' "$@" | sort -g | awk '{ a[NR] = $1 } END { if (NR % 2) print a[(NR + 1) / 2]; else printf "%.6f\n", (a[NR / 2] + a[NR / 2 + 1]) / 2 }'
}

bench_row() {
  local label=$1 median=$2
  shift 2
  local min max
  min=$(printf '%s\n' "$@" | sort -g | head -n 1)
  max=$(printf '%s\n' "$@" | sort -g | tail -n 1)
  awk -v l="$label" -v m="$median" -v a="$min" -v b="$max" -v n="$#" \
    'BEGIN { printf "%-44s median %9.2f ms   min %9.2f   max %9.2f   (%d runs)\n", l, m * 1000, a * 1000, b * 1000, n }'
}

bench_ratio() {
  awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'
}
