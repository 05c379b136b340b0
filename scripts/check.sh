#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# ./scripts/check.sh         builds, attacks the program with a sample of each kind, and writes docs/reliability.md
# ./scripts/check.sh --long  tries every fault of every call and kills the program at each of them, 2,000 of each other kind
#                            of attack, and 2,000 mutants of each form of container under the sanitizers, which takes hours
#
# The environment may say how many are tried, CHECK_FAULTS, CHECK_KILLS (empty: all) and CHECK_OTHERS (of each of the other
# kinds: altered files, full disks, limits, hostile databases, races), and which ones, CHECK_SEED. CHECK_PROGRAM and
# CHECK_SHIM name a build that is there already.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh

faults=${CHECK_FAULTS-300}
kills=${CHECK_KILLS-100}
others=${CHECK_OTHERS-50}
seed=${CHECK_SEED-1}
if [ "${1:-}" = --long ]; then
    faults=${CHECK_FAULTS-}
    kills=${CHECK_KILLS-}
    others=${CHECK_OTHERS-2000}
fi

if [ -z "${CHECK_PROGRAM:-}" ]; then
    set_up
    build release --target bluetooth-logs bluetooth_logs bluetooth_logs_fault_shim
    CHECK_PROGRAM=build/release/bluetooth-logs
    CHECK_SHIM=$(find build/release -name '*bluetooth_logs_fault_shim.so')
fi

figures=$(mktemp -d)
trap 'rm -rf "$figures"' EXIT
jobs=$(getconf _NPROCESSORS_ONLN)
code=0
python3 -B tests/faults/test_faults.py "$CHECK_PROGRAM" "$CHECK_SHIM" --jobs "$jobs" --seed "$seed" \
    ${faults:+--sample "$faults"} --json "$figures/a call of the system fails.json" || code=1
python3 -B tests/faults/test_faults.py "$CHECK_PROGRAM" "$CHECK_SHIM" --jobs "$jobs" --seed "$seed" --kill \
    ${kills:+--sample "$kills"} --json "$figures/killed at a call of the system.json" || code=1
python3 -B tests/faults/test_attacks.py "$CHECK_PROGRAM" "$CHECK_SHIM" --seed "$seed" --sample "$others" \
    --json "$figures/other.json" || code=1
if [ "${1:-}" = --long ]; then
    scripts/container_mutants.sh || code=1
fi
python3 -B tests/faults/write_reliability.py "$CHECK_PROGRAM" "$figures" >docs/reliability.md
exit "$code"
