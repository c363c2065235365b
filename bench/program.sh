#!/usr/bin/env bash
# Measures the whole tool, from file to file, beside its parts: a plain conversion by vips, and the engine alone.
# Processor time on one core, in turn; prints the table of docs/performance.md. How long a result is written depends on
# what it shows: so vips gets finished pictures, an .hdr of one in place of the scene.
#   bench/program.sh          5 rounds at 24 megapixels
#   bench/program.sh 3 4      3 rounds at 4 megapixels
set -euo pipefail
cd "$(dirname "$0")/.."

rounds=${1:-5}
megapixels=${2:-24}
work=build/bench/program
core=$(($(nproc) - 1))
export VIPS_CONCURRENCY=1
TIMEFORMAT='%U %S'

width=$(awk -v mp="$megapixels" 'BEGIN { printf "%d", 48 * int(sqrt(mp * 1.5e6) / 48 + 0.5) }')
height=$((width * 2 / 3))
pixels=$((width * height))

jpg='[Q=95,optimize-coding,subsample-mode=off]'
png='[compression=3,filter=sub]'
tif='[compression=deflate,predictor=horizontal]'
# The result's file extension and the tool's options, the input, bits of the engine's input and output, how vips converts.
conversions=(
  "jpg||scene.hdr|32-8|colourspace finished.hdr vips.jpg$jpg srgb"
  "png||scene.hdr|32-8|colourspace finished.hdr vips.png$png srgb"
  "tif|--depth 16|scene.hdr|32-16|colourspace finished.hdr vips.tif$tif rgb16"
  "jpg||finished.jpg|8-8|copy finished.jpg vips.jpg$jpg"
  "tif|--depth 16|finished.tif|16-16|copy finished.tif vips.tif$tif"
)

# Before each run, in large pages as the tool takes them: a guest system has memory from its host at a cost that
# changes, and is no figure of what runs next.
touch_memory() {
  python3 - $((60 * pixels)) <<'END'
import mmap, sys
block = mmap.mmap(-1, int(sys.argv[1]), flags=mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS)
block.madvise(mmap.MADV_HUGEPAGE)
for at in range(0, len(block), 4096):
    block[at] = 1
END
}

# Seconds of processor time of a command, and of all that it starts.
seconds_of() {
  touch_memory
  { time taskset -c "$core" "$@" >output.txt 2>errors.txt; } 2>&1 | awk '{ print $1 + $2 }'
}

# Seconds, and bytes per pixel with the host's own two buffers.
engine() {
  local bits=$1
  taskset -c "$core" "$bench" --sizes "${width}x$height" --depths "$bits" --rounds 1 --plain-limit 0 --json engine.json \
    >/dev/null
  awk -v n="$pixels" -v host="$(awk -F- '{ print ($1 == 32 ? 4 : $1 * 3 / 8) + $2 * 3 / 8 }' <<<"$bits")" -F'[:,}]' '
    /"ns"/ { for (i = 1; i < NF; ++i) { if ($i ~ /"ns"/) ns = $(i + 1); if ($i ~ /"bytes"/) bytes = $(i + 1) } }
    END { printf "%.3f %.1f\n", ns * n / 1e9, bytes + host }' engine.json
}

median() { sort -g | awk '{ v[NR] = $1 } END { printf "%.3f", NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

measure() {
  local extension options input bits convert round parts whole engine_seconds engine_bytes tool_bytes depth=
  IFS='|' read -r extension options input bits convert <<<"$1"
  read -ra options <<<"$options"
  read -ra convert <<<"$convert"
  : >rounds.txt
  for ((round = 0; round < rounds; ++round)); do
    parts=$(seconds_of vips "${convert[@]}")
    read -r engine_seconds engine_bytes < <(engine "$bits")
    whole=$(seconds_of "$tool" tonemap "$input" --overwrite -o "result.$extension" --json "${options[@]}")
    echo "$whole $parts $engine_seconds" >>rounds.txt
  done
  tool_bytes=$(sed -n 's/.*"peak_memory":\([0-9]*\).*/\1/p' output.txt)
  [ "${bits#*-}" = 8 ] || depth='16-bit '
  # shellcheck disable=SC2016  # they are quotes of code
  printf '| `.%s` to %s`.%s` | %.2f | %.2f + %.2f | %.2f | %.1f | %.1f |\n' "${input##*.}" \
    "$depth" "$extension" \
    "$(awk '{ print $1 }' rounds.txt | median)" "$(awk '{ print $2 }' rounds.txt | median)" \
    "$(awk '{ print $3 }' rounds.txt | median)" "$(awk '{ print $1 / ($2 + $3) }' rounds.txt | median)" \
    "$(awk -v n="$pixels" -v b="$tool_bytes" 'BEGIN { print b / n }')" "$engine_bytes"
}

scripts/setup
cmake --preset release >/dev/null
cmake --build --preset release --target quorvane_tool quorvane-bench quorvane-scene >/dev/null
tool=$PWD/build/release/quorvane
bench=$PWD/build/release/quorvane-bench
mkdir -p $work
build/release/quorvane-scene --width "$width" $work/scene.hdr
cd $work
"$tool" tonemap scene.hdr --overwrite -o finished.jpg
"$tool" tonemap scene.hdr --overwrite -o finished.tif --depth 16
vips colourspace finished.tif linear.v scrgb
vips copy linear.v finished.hdr
echo "| $megapixels megapixels | tool s | vips + engine s | ratio | tool bytes per pixel | engine with its host's buffers |"
echo '|---|---:|---:|---:|---:|---:|'
for conversion in "${conversions[@]}"; do measure "$conversion"; done
