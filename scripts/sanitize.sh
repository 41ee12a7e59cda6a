#!/usr/bin/env bash
# The unit tests again under AddressSanitizer and UndefinedBehaviorSanitizer (clang, in
# build-asan/), then every fuzz target of fuzz/ for a bounded time each.
#   MORVANE_FUZZ_SECONDS  seconds per fuzz target (default 10; 0 skips the fuzzing)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-asan"
seconds=${MORVANE_FUZZ_SECONDS:-10}
if [ ! -f "$build/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Sanitize \
        -DMORVANE_SANITIZE=ON -DMORVANE_FUZZ=ON -DMORVANE_BUILD_QT=OFF
fi
cmake --build "$build" -j2

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:strict_string_checks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$root/fuzz/lsan.supp}
# The crash trials kill real processes and gain nothing from the sanitizers.
(cd "$build" && ctest --output-on-failure -j2 --timeout 900 -LE 'crash|bench')

[ "$seconds" -gt 0 ] || exit 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for fuzzer in "$build"/bin/fuzz_*; do
    name=$(basename "$fuzzer")
    corpus="$work/$name"
    mkdir -p "$corpus"
    if [ -d "$root/fuzz/seeds/${name#fuzz_}" ]; then cp "$root/fuzz/seeds/${name#fuzz_}"/* "$corpus/"; fi
    echo "== $name for ${seconds}s"
    if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$work/" "$corpus" >"$work/$name.log" 2>&1; then
        tail -n 60 "$work/$name.log"
        echo "$name found a fault"
        exit 1
    fi
    grep -E "stat::number_of_executed_units|stat::peak_rss_mb" "$work/$name.log" || true
done
