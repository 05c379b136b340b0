#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# scripts/container_mutants.sh [COUNT [FORM...]]  so many mutants (2,000) of each form of container, or of those that are
#                                                 named (tar, zip, apfs, ewf, …), under the sanitizers. Those that bring a
#                                                 library down are named by their numbers; the program has to name them.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/setup.sh

set_up "${debian_test_packages[@]}"
build asan --target bluetooth-logs bluetooth_logs container_mutants write_hive
export LSAN_OPTIONS=detect_leaks=0 # the libraries keep parts of an image that they could not open
folder=build/asan/tests/host/container
exec python3 -B tests/host/container/test_container_mutants.py build/asan/bluetooth-logs \
    "$folder/write_hive" "$folder/container_mutants" "${1:-2000}" "${@:2}"
