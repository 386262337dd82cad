#!/usr/bin/env bash
# Runs every libFuzzer target of the linux-fuzz preset for long and prints,
# per target, executions, executions per second, coverage and findings.
#   scripts/fuzz.sh [SECONDS [RUNS [TARGET...]]]
#       each target (all of them, or the TARGETs named) until SECONDS have
#       passed (default 60) or RUNS executions are done
# Inputs that grow coverage are kept in build/linux-fuzz/tests/fuzz/<name>-found;
# a finding is written there as <name>-crash-..., -leak-... or -timeout-...
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
runs=${2:--1}
shift $(($# < 2 ? $# : 2))

scripts/deps.sh all >/dev/null
cmake --preset linux-fuzz >/dev/null
cmake --build --preset linux-fuzz >/dev/null
fuzz=build/linux-fuzz/tests/fuzz
printf '%-12s %12s %10s %8s %8s %s\n' target executions "exec/s" cov features findings
status=0
for options in "$fuzz"/*.options; do
    name=$(basename "$options" .options)
    if [ $# -gt 0 ] && [[ " $* " != *" $name "* ]]; then continue; fi
    log=$fuzz/$name-long.log
    # shellcheck disable=SC2046 # the options file holds separate words
    ASAN_OPTIONS=detect_leaks=1 build/linux-fuzz/bin/zk64_"$name"_fuzzer $(cat "$options") \
        -max_total_time="$seconds" -runs="$runs" -print_final_stats=1 \
        -artifact_prefix="$fuzz/$name-" "$fuzz/$name-found" "tests/fuzz/$name-corpus" >"$log" 2>&1 || true
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    last=$(grep -E '^#[0-9]+' "$log" | tail -1)
    cov=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$last")
    features=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$last")
    findings=$(find "$fuzz" -maxdepth 1 -name "$name-crash-*" -o -maxdepth 1 -name "$name-leak-*" \
               -o -maxdepth 1 -name "$name-timeout-*" -o -maxdepth 1 -name "$name-oom-*" | wc -l)
    [ "$findings" -eq 0 ] || status=1
    printf '%-12s %12s %10s %8s %8s %s\n' "$name" "${executions:-?}" "${speed:-?}" "${cov:-?}" "${features:-?}" "$findings"
done
exit $status
