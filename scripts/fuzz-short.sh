#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in build-fuzz/ and runs each one for a while.
#
#   scripts/fuzz-short.sh [seconds per target, default 60] [target name ...]
#
# Without target names every fuzz_* target is run. Each run starts from the committed seeds in
# fuzz/corpus/<target>/ and the corpus it grew before in build-fuzz/corpus/<target>/ (where new
# inputs go), and stops at the first crash or sanitizer
# report; the script then fails and names the target. The last line of each run reports the
# number of executions.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
shift || true

cmake -S . -B build-fuzz -G Ninja -DWIDGET_COMMON_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ \
    -DWIDGET_COMMON_TESTS=OFF -DWIDGET_COMMON_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
    for source in fuzz/fuzz_*.cpp; do
        targets+=("$(basename "${source%.cpp}")")
    done
fi
cmake --build build-fuzz -j2 --target "${targets[@]}"

for target in "${targets[@]}"; do
    corpus="build-fuzz/corpus/${target}"
    mkdir -p "${corpus}"
    echo "== ${target}: ${seconds} s"
    log="build-fuzz/${target}.log"
    # Full stacks for leaks, so that the suppressions (Qt's own leaks) can match by function.
    if ! ASAN_OPTIONS=fast_unwind_on_malloc=0 \
        LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
        "build-fuzz/fuzz/${target}" -max_total_time="${seconds}" -print_final_stats=1 -artifact_prefix="build-fuzz/${target}-" \
        "${corpus}" "fuzz/corpus/${target}" >"${log}" 2>&1; then
        tail -n 40 "${log}"
        echo "${target} failed; the input is in build-fuzz/${target}-crash-*" >&2
        exit 1
    fi
    grep -E "stat::number_of_executed_units|Done [0-9]+ runs" "${log}" | tail -n 2
done
