#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# ./test.sh  builds and runs every test; arguments go to ctest: ./test.sh -R host

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/setup.sh
source scripts/browser_tests.sh

set_up "${debian_test_packages[@]}"
if set_up_browser_packages; then
    set_up_browser_modules & # while the build runs
fi
build release
wait
use_memory_for_tests
ctest --preset release "$@"
