#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each one for a while.
#
#   scripts/fuzz-short.sh [--in DIR] [--jobs N] [seconds per target, default 60] [target ...]
#
# Without --in the targets are built in build-fuzz/ (clang, RelWithDebInfo); with it, in the
# given build tree, which must be configured with clang and -DWIDGET_COMMON_FUZZ=ON (CI's
# sanitizer build). --jobs runs that many targets at once (default 1). Without target names
# every fuzz_* target is run. Each run starts from the committed seeds in fuzz/corpus/<target>/
# and the corpus it grew before in DIR/corpus/<target>/ (where new inputs go), and stops at the
# first crash or sanitizer report; the script then fails and names the target. The last line of
# each run reports the number of executions.
set -euo pipefail
cd "$(dirname "$0")/.."

build=""
jobs=1
while [ $# -gt 0 ]; do
    case "$1" in
        --in) build="$2"; shift 2 ;;
        --jobs) jobs="$2"; shift 2 ;;
        *) break ;;
    esac
done
seconds="${1:-60}"
shift || true

if [ -z "${build}" ]; then
    build=build-fuzz
    cmake -S . -B "${build}" -G Ninja -DWIDGET_COMMON_FUZZ=ON -DCMAKE_CXX_COMPILER=clang++ \
        -DWIDGET_COMMON_TESTS=OFF -DWIDGET_COMMON_BENCH=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        >/dev/null
fi

targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
    for source in fuzz/fuzz_*.cpp; do
        targets+=("$(basename "${source%.cpp}")")
    done
fi
cmake --build "${build}" -j2 --target "${targets[@]}"
# Absolute paths: a target that reads through the dialogs works in a folder of its own.
build=$(cd "${build}" && pwd)

run_one() {
    local target="$1"
    local corpus="${build}/corpus/${target}"
    local log="${build}/${target}.log"
    mkdir -p "${corpus}"
    # Full stacks for leaks, so that the suppressions (Qt's own leaks) can match by function.
    ASAN_OPTIONS=fast_unwind_on_malloc=0 \
        LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
        "${build}/fuzz/${target}" -max_total_time="${seconds}" -print_final_stats=1 \
        -artifact_prefix="${build}/${target}-" "${corpus}" "$PWD/fuzz/corpus/${target}" >"${log}" 2>&1
}

failed=()
report() {
    local target="$1" status="$2"
    echo "== ${target}: ${seconds} s"
    if [ "${status}" -ne 0 ]; then
        tail -n 40 "${build}/${target}.log"
        echo "${target} failed; the input is in ${build}/${target}-crash-*" >&2
        failed+=("${target}")
    else
        grep -E "stat::number_of_executed_units|Done [0-9]+ runs" "${build}/${target}.log" | tail -n 2
    fi
}

# Runs the targets in batches of ${jobs}; every target of a batch is reported before the next.
for ((first = 0; first < ${#targets[@]}; first += jobs)); do
    batch=("${targets[@]:first:jobs}")
    pids=()
    for target in "${batch[@]}"; do
        run_one "${target}" &
        pids+=($!)
    done
    for i in "${!batch[@]}"; do
        status=0
        wait "${pids[$i]}" || status=$?
        report "${batch[$i]}" "${status}"
    done
done

if [ "${#failed[@]}" -ne 0 ]; then
    echo "fuzzers failed: ${failed[*]}" >&2
    exit 1
fi
