#!/usr/bin/env bash
# Measures whole calls, kernels, stages and operations, and writes docs/performance.md anew.
#   bench/run.sh           all sizes and depths: a quarter of an hour, and 12 GiB of free memory
#   bench/run.sh --quick   2 and 24 megapixels, few rounds
set -euo pipefail
cd "$(dirname "$0")/.."

calls=(--sizes all --depths all --rounds 5)
kernels=(--benchmark_repetitions=5 --benchmark_report_aggregates_only=true --benchmark_min_time=0.1)
if [ "${1:-}" = --quick ]; then
  calls=(--sizes 2,24 --depths all --rounds 1)
  kernels=(--benchmark_min_time=0.02)
fi

scripts/setup --test
cmake --preset release >/dev/null
cmake --build --preset release --target quorvane-bench quorvane-bench-kernels
mkdir -p build/bench
core=$(($(nproc) - 1))
taskset -c $core build/release/quorvane-bench "${calls[@]}" --json build/bench/whole.json
taskset -c $core build/release/quorvane-bench-kernels "${kernels[@]}" \
  --benchmark_out=build/bench/kernels.json --benchmark_out_format=json
bench/report
