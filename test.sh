#!/usr/bin/env bash
# Installs what is needed, builds and passes all tests: ./test.sh [--sanitizers | --vm] [-R pattern]
set -euo pipefail
cd "$(dirname "$0")"

presets=(dev)
filter=()
vm=
while [ $# -gt 0 ]; do
    case $1 in
        --sanitizers) presets+=(asan tsan) ;;
        --vm) vm=1 ;;
        -R)
            [ $# -ge 2 ] || { echo "test.sh: -R needs a pattern" >&2; exit 2; }
            filter=(-R "$2"); shift ;;
        --help|-h)
            echo "Usage: ./test.sh [--sanitizers | --vm] [-R PATTERN]"
            echo "  --sanitizers  run everything again under address, undefined-behaviour and thread sanitizers"
            echo "  --vm          only the tests in virtual machines with SAS hardware (docs/testing-in-a-vm.md)"
            echo "  -R PATTERN    only the tests whose names match"
            exit 0 ;;
        *) echo "test.sh: unknown option $1 (try --help)" >&2; exit 2 ;;
    esac
    shift
done

if [ -n "$vm" ]; then
    [ "$(uname -m)" = x86_64 ] || {
        echo "test.sh: the virtual machines are x86-64 ones and cannot be run on $(uname -m)" >&2
        exit 1
    }
    tools/install-packages build vm
    tools/build release
    exec tests/vm/run "${filter[@]}"
fi

tools/install-packages build test
tools/lint

# The thread sanitizer of GCC 12 cannot place its shadow when the kernel spreads addresses too widely.
run=()
if [[ " ${presets[*]} " == *" tsan "* ]] && setarch "$(uname -m)" -R true 2>/dev/null; then
    run=(setarch "$(uname -m)" -R)
fi

failed=0
for preset in "${presets[@]}"; do
    tools/build "$preset"
    log="build/$preset/test.log"
    echo "Testing $preset ..."
    if "${run[@]}" ctest --preset "$preset" -j "$(nproc)" "${filter[@]}" >"$log" 2>&1; then
        grep -E 'tests passed|No tests were found' "$log"
    else
        failed=1
        grep -vE '^ *[0-9]+/[0-9]+ Test .* Passed|^ *Start ' "$log" | tail -n 150 >&2
        echo "test.sh: tests failed under preset $preset; the whole log is $log" >&2
    fi
    grep -q 'No tests were found' "$log" && { echo "test.sh: nothing was tested under $preset" >&2; failed=1; }
done
exit $failed
