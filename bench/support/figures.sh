# Alternating pairs for figures the programs measure themselves. Source it after alternate.sh.

# Like bench_alternate, but each command prints one number of milliseconds on its standard output
# (a program's own clock, e.g. "prog --report | awk ..."), and those are compared rather than the
# whole runs. Prints one table row per command and sets BENCH_FIGURE_MEDIAN_A / _B (milliseconds).
#   bench_alternate_figures RUNS "label A" "command A" "label B" "command B"
bench_alternate_figures() {
  local runs=$1 label_a=$2 cmd_a=$3 label_b=$4 cmd_b=$5
  bench_pairs bench_figure "$runs" "$cmd_a" "$cmd_b"
  BENCH_FIGURE_MEDIAN_A=$(bench_median "${BENCH_PAIRS_A[@]}")
  BENCH_FIGURE_MEDIAN_B=$(bench_median "${BENCH_PAIRS_B[@]}")
  bench_figure_row "$label_a" "$BENCH_FIGURE_MEDIAN_A" "${BENCH_PAIRS_A[@]}"
  bench_figure_row "$label_b" "$BENCH_FIGURE_MEDIAN_B" "${BENCH_PAIRS_B[@]}"
}

# The number one run of a command prints; the run fails the benchmark when it prints none.
# What the run wrote on standard error is shown when it fails.
bench_figure() {
  local out errors
  errors=$(mktemp)
  out=$(bash -o pipefail -c "$1" 2>"$errors") &&
    awk -v v="$out" 'BEGIN { exit !(v ~ /^[0-9]+(\.[0-9]+)?$/) }' || {
    echo "bench: no figure from: $1" >&2
    sed 's/^/  /' "$errors" >&2
    rm -f "$errors"
    exit 1
  }
  rm -f "$errors"
  echo "$out"
}

bench_figure_row() {
  local label=$1 median=$2
  shift 2
  local min max
  min=$(printf '%s\n' "$@" | sort -g | head -n 1)
  max=$(printf '%s\n' "$@" | sort -g | tail -n 1)
  awk -v l="$label" -v m="$median" -v a="$min" -v b="$max" -v n="$#" \
    'BEGIN { printf "%-44s median %9.2f ms   min %9.2f   max %9.2f   (%d runs)\n", l, m, a, b, n }'
}
