#!/usr/bin/env bash
# Runs every test: the native unit tests (with sanitizers), the same unit tests
# built for Windows and run under Wine, and the end-to-end tests of the real
# programs under Wine on a virtual display; and a short run of every fuzzer.
set -eu
cd "$(dirname "$0")/.."
bash tools/setup_packages.sh

cmake --preset native >/dev/null
cmake --build --preset native -j2
cmake --preset windows >/dev/null
cmake --build --preset windows -j2

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2

# Tests that mostly wait on real time (the field simulator sends at the
# receiver's and the instrument's rates) run many at a time: the simulator's
# self-check parts beside the unit tests, and the end-to-end tests, each in its
# own Wine prefix and display, beside each other. The fuzzers each work a fixed
# time on a core of their own: two at a time.
ctest --preset native -j4
ctest --preset fuzz -j2
ctest --preset windows -j"${KELVO_E2E_JOBS:-12}"
