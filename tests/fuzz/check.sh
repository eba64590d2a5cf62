#!/usr/bin/env bash
# Random calls of every export for a while, on the build with sanitizers; five families of kernels under libFuzzer at
# the same time.
#   tests/fuzz/check.sh [SECONDS [SEED]]      60 seconds and a seed of the clock by itself
# A violation is printed with the line that repeats it: build/asan/tests/fuzz/fuzz_driver repeat NAME WORD...
set -euo pipefail
cd "$(dirname "$0")/../.."
seconds=${1:-60} seed=${2:-$((RANDOM * 32768 + RANDOM))}
export OPENBLAS_NUM_THREADS=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
families=(FNC Hypergeometric Binomial Gamma,Incomplete,InverseGamma,Beta,InverseBeta,StudentT,FisherF MC)
names=(noncentral_hypergeometric hypergeometric binomial gamma_beta multiple_comparison)

mkdir -p build build/fuzz
cmake --preset asan >build/asan.log 2>&1 || { cat build/asan.log; exit 1; }
cmake --build --preset asan --target fuzz_driver fuzz_families >build/asan.log 2>&1 || { cat build/asan.log; exit 1; }

# A few seconds each, more in a long run; what they find stays in the build folder,
# and tests/fuzz/corpus.py pack takes it over.
each=$((seconds / 8))
[ "$each" -ge 2 ] || each=2
cover() {
    local i log failed=0 found
    for i in "${!families[@]}"; do
        found=build/fuzz/found/${names[i]} log=build/fuzz/${names[i]}.log
        mkdir -p "$found"
        tests/fuzz/corpus.py unpack "tests/fuzz/corpus/${names[i]}.txt" "build/fuzz/corpus/${names[i]}"
        if FAMILY=${families[i]} ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1 build/asan/tests/fuzz/fuzz_families \
            "$found" "build/fuzz/corpus/${names[i]}" -max_total_time="$each" -seed="$((seed % 2147483647))" \
            -max_len=96 -timeout=60 -rss_limit_mb=4096 -artifact_prefix=build/fuzz/ -close_fd_mask=1 >"$log" 2>&1; then
            printf 'libFuzzer %-28s %s\n' "${names[i]}" "$(grep -E '^Done|^#[0-9]+.*DONE' "$log" | tail -1)"
        else
            failed=1
            printf 'libFuzzer %s failed:\n' "${names[i]}"
            grep -A40 -m1 -E 'VIOLATION|ERROR|runtime error' "$log" || tail -40 "$log"
        fi
    done
    return "$failed"
}
cover &
covering=$!
status=0
build/asan/tests/fuzz/fuzz_driver "$seconds" "$seed" || status=1
wait "$covering" || status=1
[ "$status" = 0 ] || echo "fuzz: run again with the same calls: tests/fuzz/check.sh $seconds $seed"
exit "$status"
