#!/usr/bin/env bash
# Measures Quorvane and other tone mappers of Debian on one and the same picture: one core each, in turn.
#   bench/peers.sh            3 rounds at 4 and 24 megapixels
#   bench/peers.sh 5 4        5 rounds at 4 megapixels
# Installs what is missing; a peer that is not available is left out. Writes docs/performance.md anew.
set -euo pipefail
cd "$(dirname "$0")/.."

rounds=${1:-3}
sizes=(4 24)
[ $# -lt 2 ] || sizes=("${@:2}")
work=build/bench
figures=$work/peers.tsv
core=$(($(nproc) - 1))
export OMP_NUM_THREADS=1 QT_QPA_PLATFORM=offscreen
TIMEFORMAT='%U %S %R'
# Minutes a call on large pictures.
slow=(pfstmo_durand02)

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

install_peer() {
  dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'ok installed' ||
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "$1" >/dev/null ||
    echo "peers.sh: $1 cannot be installed; going on without" >&2
}

build() {
  cmake --preset release >/dev/null
  cmake --build --preset release --target libquorvane.so quorvane_tool quorvane-scene
  pkg-config --exists opencv4 || return 0
  read -ra opencv < <(pkg-config --cflags-only-I opencv4)
  g++ -std=c++20 -O2 -I. "${opencv[@]/#-I/-isystem}" bench/peers/Operators.cpp bench/Usage.cpp -o $work/operators \
    -Lbuild/release -lquorvane -Wl,-rpath,"$PWD/build/release" -lopencv_core -lopencv_imgcodecs -lopencv_photo
}

# 3:2, with details of its own at each size.
make_picture() {
  local width
  width=$(awk -v mp="$1" 'BEGIN { printf "%d", 48 * int(sqrt(mp * 1.5e6) / 48) }')
  pixels=$((width * width * 2 / 3))
  picture=$work/scene-$1.hdr
  [ -e "$picture" ] || build/release/quorvane-scene --width "$width" "$picture"
}

# Runs a shell command. ns: nanoseconds of processor time per pixel, of all that it starts; share: what it had of
# the time that passed.
cost() {
  local times
  times=$({ time taskset -c "$core" bash -o pipefail -c "$1" >$work/output 2>&1; } 2>&1) || return 1
  ns=$(awk -v n="$pixels" '{ printf "%.2f", ($1 + $2) * 1e9 / n }' <<<"$times")
  share=$(awk '{ printf "%.4f", ($1 + $2) / $3 }' <<<"$times")
}

record() { printf '%s\t%s\t%s\t%s\n' "$size" "$1" "$2" "$3" | tee -a "$figures"; }

is_left_out() { [ "$size" -gt 4 ] && [[ " ${slow[*]} " == *" $1 "* ]]; }

run_operators() {
  [ -x $work/operators ] || return 0
  taskset -c "$core" $work/operators "$picture" >$work/operators.txt
  while IFS=$'\t' read -r name ns; do record operator "$name" "$ns"; done <$work/operators.txt
}

# The operator is what its command takes longer than a command that hands the picture through.
run_pfstools() {
  command -v pfstmo_reinhard02 pfsinrgbe >/dev/null || return 0
  local pfs=$work/scene.pfs operator passing
  pfsinrgbe "$picture" >$pfs
  cost "pfstag --set Q=1 <$pfs >/dev/null" || return 0
  passing=$ns
  for operator in "pfstmo_reinhard02 --scales" pfstmo_durand02; do
    ! is_left_out "${operator%% *}" || continue
    ! cost "$operator <$pfs >/dev/null" ||
      record operator "pfstools ${operator#pfstmo_}" "$(awk "BEGIN { print $ns - $passing }")"
    ! cost "pfsinrgbe $picture | $operator | pfsgamma -g 2.2 | pfsoutimgmagick --quality 95 $work/out.jpg" ||
      record program "pfstools ${operator#pfstmo_}" "$ns"
  done
  rm -f $pfs
}

# The program prints the milliseconds that passed in its operator.
run_luminance() {
  command -v luminance-hdr-cli >/dev/null || return 0
  local operator passed
  for operator in durand fattal; do
    cost "luminance-hdr-cli -v -l $picture --tmo $operator -q 95 -o $work/out.jpg" || continue
    record program "Luminance HDR $operator" "$ns"
    passed=$(sed -n "s/^tmo_${operator}02 = \([0-9.]*\) msec.*/\1/p" $work/output)
    [ -z "$passed" ] ||
      record operator "Luminance HDR $operator" "$(awk "BEGIN { print $passed * $share * 1e6 / $pixels }")"
  done
}

run_quorvane() {
  ! cost "build/release/quorvane tonemap $picture --overwrite -o $work/out.jpg" || record program "quorvane tonemap" "$ns"
}

mkdir -p $work
scripts/setup
for package in libopencv-dev pfstools pfstmo luminance-hdr; do install_peer $package; done
build
: >"$figures"
for size in "${sizes[@]}"; do
  make_picture "$size"
  for ((round = 0; round < rounds; ++round)); do
    run_operators
    run_quorvane
    run_pfstools
    run_luminance
  done
done
bench/report
