#!/usr/bin/env bash
# about: start atrium on a restored four-pane workspace under Xvfb until its window is mapped and painted, against pcmanfm-qt opening one folder
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
source "$here/support/alternate.sh"
build=${ATRIUM_BUILD:-$here/../build}
atrium="$build/src/atrium"
export LC_ALL=C.UTF-8

# The file manager compared against, from Debian, installed on first use.
if ! command -v pcmanfm-qt >/dev/null 2>&1; then
  sudo=""; [ "$(id -u)" -ne 0 ] && sudo=sudo
  $sudo apt-get install -y -qq --no-install-recommends pcmanfm-qt >/dev/null 2>&1 ||
    { $sudo apt-get update -qq && $sudo apt-get install -y -qq --no-install-recommends pcmanfm-qt >/dev/null; }
fi

# A private display and private settings, so that nothing of the person running it is touched.
scratch=$(mktemp -d /tmp/atrium-bench-startup.XXXXXX)
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
bus_pid=""
cleanup() {
  kill "$xvfb" 2>/dev/null || true
  [ -n "$bus_pid" ] && kill "$bus_pid" 2>/dev/null || true
  rm -rf "$scratch"
}
trap cleanup EXIT
export DISPLAY=$display
for _ in $(seq 1 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
export XDG_CONFIG_HOME="$scratch/config" XDG_DATA_HOME="$scratch/data" XDG_CACHE_HOME="$scratch/cache"
export XDG_RUNTIME_DIR="$scratch/runtime"
mkdir -p -m 700 "$XDG_RUNTIME_DIR"
# A private session bus, as a desktop has one (pcmanfm-qt does not start without it). Each start
# is still a first start: the one before has ended, and let its name go, before the next begins.
bus_info=$(dbus-daemon --session --fork --print-address=1 --print-pid=1)
export DBUS_SESSION_BUS_ADDRESS=$(echo "$bus_info" | sed -n 1p)
bus_pid=$(echo "$bus_info" | sed -n 2p)

# Four folders of 2,000 files each, one per pane.
folders="$scratch/folders"
for pane in 1 2 3 4; do
  mkdir -p "$folders/pane$pane"
  (cd "$folders/pane$pane" && seq 1 2000 | sed "s/^/file-$pane-/; s/$/.txt/" | xargs touch)
done

# The restored workspace: layout 0 (four panes), each pane on its folder, open at the last end.
mkdir -p "$XDG_DATA_HOME/Atrium/guest/spaces" "$XDG_CONFIG_HOME/Atrium"
pane_record() {
  printf '{"viewType": 2, "histories": ["%s"], "historyIndex": 0, "root": "%s"}' "$1" "$1"
}
cat > "$XDG_DATA_HOME/Atrium/guest/spaces/Bench.atx" <<EOF
{"frame": [[100, 50], [1280, 900]], "sidebarWidth": 180, "layoutId": 0,
 "vd1": $(pane_record "$folders/pane1"), "vd2": $(pane_record "$folders/pane2"),
 "vd3": $(pane_record "$folders/pane3"), "vd4": $(pane_record "$folders/pane4")}
EOF
echo '{"cached_open_atrium_names": ["Bench"]}' > "$XDG_CONFIG_HOME/Atrium/defaults.json"

# Seconds from the start of a command until a window with the title is on screen and holds
# more than a few colours (painted); then the program is ended and has let its bus name go.
painted="$build/bench/window-painted"
time_to_painted() {
  local title=$1
  shift
  local start end
  start=$EPOCHREALTIME
  "$@" >/dev/null 2>&1 &
  local pid=$!
  if ! "$painted" "$title" 10; then
    kill "$pid" 2>/dev/null || true
    echo "bench: no painted window titled '$title' from: $*" >&2
    exit 1
  fi
  end=$EPOCHREALTIME
  kill "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || true
  awk -v s="$start" -v e="$end" 'BEGIN { printf "%.6f", e - s }'
}

atrium_start() { time_to_painted "Bench" "$atrium"; }
pcmanfm_start() { time_to_painted "pane1" pcmanfm-qt "$folders/pane1"; }

echo "locale: $LC_ALL   display: Xvfb 1600x1000   $(nproc) cores"
echo "atrium: the workspace \"Bench\", layout of four panes on 2,000 files each"
echo "pcmanfm-qt $(dpkg-query -W -f='${Version}' pcmanfm-qt 2>/dev/null): one folder of 2,000 files"
echo
runs=9
times_a=(); times_b=()
atrium_start >/dev/null; pcmanfm_start >/dev/null
for ((i = 0; i < runs; i++)); do
  times_a+=("$(atrium_start)")
  times_b+=("$(pcmanfm_start)")
done
median_a=$(bench_median "${times_a[@]}")
median_b=$(bench_median "${times_b[@]}")
bench_row "atrium (4 panes), start to painted window" "$median_a" "${times_a[@]}"
bench_row "pcmanfm-qt (1 folder), start to painted" "$median_b" "${times_b[@]}"
awk -v a="$median_a" 'BEGIN { printf "goal: atrium under 400 ms median: %s\n", (a < 0.4) ? "met" : "MISSED" }'
echo "startup ratio $(bench_ratio "$median_a" "$median_b")"
