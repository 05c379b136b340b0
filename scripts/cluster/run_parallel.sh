#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# run_parallel.sh LIST CASE [OPTION...]: every source of a list in a process of its own under GNU parallel, then the
# manifest. The options go to extract. PARALLEL holds options for parallel itself, such as --jobs or --sshloginfile;
# BLUETOOTH_LOGS the program, if it is not in the path. The exit code is that of collect.

set -euo pipefail
here=$(dirname "${BASH_SOURCE[0]}")
program=${BLUETOOTH_LOGS:-bluetooth-logs}
list=$1
case_folder=$2
shift 2

numbers=$("$here/source_numbers.py" "$list")
# What fails is in the records: collect tells it.
parallel --quote "$program" extract --sources "$list" -o "$case_folder" --only '{}' "$@" <<<"$numbers" || true
exec "$program" collect "$case_folder"
