#!/usr/bin/env bash
# A long fuzzing campaign over every parser of outside input: each libFuzzer
# target runs to at least RUNS executions (10 million by default), starting
# from its seed corpus in tests/fuzz/corpus/<target>/ (read only; what the run
# finds new goes to build/fuzz/campaign/<target>/). Prints executions, time
# and findings per target; a finding leaves its input in the campaign folder
# (crash-*, leak-*, timeout-*), to be turned into a unit test. With
# FUZZ_SECONDS set, each target also stops after that many seconds, for a
# shorter campaign on a busy machine.
#   [FUZZ_SECONDS=S] bench/fuzz_campaign.sh [RUNS] [TARGET ...]
set -eu
cd "$(dirname "$0")/.."
runs="${1:-10000000}"
shift || true
bash tools/setup_packages.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 >/dev/null

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in tests/fuzz/fuzz_*.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi

printf '%-22s %12s %9s %9s %s\n' target executions seconds exec/s findings
for target in "${targets[@]}"; do
  work="build/fuzz/campaign/$target"
  seeds="tests/fuzz/corpus/$target"
  mkdir -p "$work"
  dirs=("$PWD/$work")
  [ -d "$seeds" ] && dirs+=("$PWD/$seeds")
  log="$work.log"
  start=$(date +%s)
  limit=()
  [ "${FUZZ_SECONDS:-0}" -gt 0 ] && limit=(-max_total_time="$FUZZ_SECONDS")
  ( cd "$work" && "../../$target" -runs="$runs" "${limit[@]}" -rss_limit_mb=2048 -timeout=20 \
      -print_final_stats=1 "${dirs[@]}" ) >"$log" 2>&1 || true
  seconds=$(( $(date +%s) - start ))
  executions=$(grep -m1 -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo 0)
  findings=$(find "$work" -maxdepth 1 \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' \) | wc -l)
  rate=0
  [ "$seconds" -gt 0 ] && rate=$(( ${executions:-0} / seconds ))
  printf '%-22s %12s %9s %9s %s\n' "$target" "${executions:-0}" "$seconds" "$rate" "$findings"
done
