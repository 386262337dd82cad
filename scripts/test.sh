#!/usr/bin/env bash
# Builds and runs every test: Linux native (with the installed-package
# consumer test), Linux under AddressSanitizer and UndefinedBehaviorSanitizer,
# Linux under ThreadSanitizer, a bounded libFuzzer run of the PE reader, and
# the Windows DLL under Wine. Ends with "N passed, M failed".
set -uo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh all || exit 1

passed=0
failed=0
broken=()

# A throwaway Wine prefix for this run, served by one persistent wineserver
# so that each test program starts in milliseconds. Windows get Wine's null
# graphics driver: no display is needed.
start_wine() {
    export WINEDEBUG=-all
    WINEPREFIX=$(mktemp -d "${TMPDIR:-/tmp}/zk64-wine.XXXXXX")
    export WINEPREFIX
    trap 'wineserver -k >/dev/null 2>&1; rm -rf "$WINEPREFIX"' EXIT
    wineboot -i >/dev/null 2>&1
    wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1
    wineserver -k >/dev/null 2>&1
    wineserver -p
    # Start Wine's background services now, detached from ctest's output
    # pipes: services started by the first test would inherit them and keep
    # ctest waiting for end of output.
    wine cmd /c exit </dev/null >/dev/null 2>&1
}

run_preset() {
    local preset=$1 log
    log=$(mktemp)
    echo "=== ${preset}: configure and build"
    if ! { cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset"; }; then
        echo "=== ${preset}: BUILD FAILED"
        broken+=("$preset")
        return
    fi
    [ "$preset" = windows ] && start_wine
    echo "=== ${preset}: tests"
    ctest --preset "$preset" 2>&1 | tee "$log"
    local summary
    summary=$(sed -n 's/.*tests passed, \([0-9]*\) tests failed out of \([0-9]*\).*/\1 \2/p' "$log" | tail -1)
    if [ -z "$summary" ]; then
        broken+=("$preset")
    else
        set -- $summary
        failed=$((failed + $1))
        passed=$((passed + $2 - $1))
    fi
    rm -f "$log"
}

for preset in linux linux-asan linux-tsan linux-fuzz windows; do
    run_preset "$preset"
done

echo
[ ${#broken[@]} -gt 0 ] && echo "did not build or run: ${broken[*]}"
echo "${passed} passed, ${failed} failed"
[ "$failed" -eq 0 ] && [ ${#broken[@]} -eq 0 ]
