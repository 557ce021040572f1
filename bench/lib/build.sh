# Sourced after scripts/setup.sh: builds the benchmarks as a release is built, without tests and without the console host.
# All of them each time, with warnings as errors: .ci/run sees by it that none of them rots.
# shellcheck shell=bash disable=SC2154

# What is measured with Qt 6 stands beside what is measured with 5.15.
suffix=
[ "$qt" = 5 ] || suffix=-qt$qt
bench_build="$project/build/bench$suffix"

build_benchmarks() {
    step "Building the benchmarks"
    (cd "$project" && quietly cmake -S . -B "$bench_build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCALYXCLIENT_QT="$qt" \
        -DCALYXCLIENT_WARNINGS=ON -DCALYXCLIENT_WERROR=ON \
        -DCALYXCLIENT_BUILD_BENCH=ON -DCALYXCLIENT_BUILD_TESTS=OFF -DCALYXCLIENT_BUILD_PRESENTER=OFF) \
        || fail "cmake could not configure the benchmarks"
    quietly cmake --build "$bench_build" || fail "the benchmarks could not be built"
}
