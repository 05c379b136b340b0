#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# run.sh MODULES PROGRAM: page_test.mjs. Ends with 77 where node, its modules or a browser are missing; with 1 where
# BLUETOOTH_LOGS_NO_SKIPPED_BROWSER says that they must be there.

set -uo pipefail

code=77
if command -v node >/dev/null; then
    node "$(dirname "${BASH_SOURCE[0]}")/page_test.mjs" "$@"
    code=$?
else
    echo "skipped: there is no node"
fi
if [ "$code" -eq 77 ] && [ -n "${BLUETOOTH_LOGS_NO_SKIPPED_BROWSER:-}" ]; then
    code=1
fi
exit "$code"
