#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# submit.sh LIST CASE [OPTION...]: an array job over the sources of a list, and behind it, however it ends, a job that
# makes the manifest. The options go to extract. Prints the numbers of the two jobs. TASKS is the most tasks that the
# array may have (default 1000; a site's MaxArraySize is above it): with more sources, a task does several, one after
# the other. BLUETOOTH_LOGS is the program, if it is not in the path. What the jobs print stands in CASE-slurm.

set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$(command -v "${BLUETOOTH_LOGS:-bluetooth-logs}")
list=$(realpath "$1")
case_folder=$(realpath -m "$2")
shift 2

sources=$("$here/source_numbers.py" "$list" | wc -l)
most=${TASKS:-1000}
tasks=$((sources < most ? sources : most))
logs=$case_folder-slurm
mkdir -p "$case_folder" "$logs"
array=$(sbatch --parsable --array="0-$((tasks - 1))" --output="$logs/%A_%a.log" \
    "$here/extract.sbatch" "$here" "$program" "$list" "$case_folder" "$@")
collecting=$(sbatch --parsable --dependency="afterany:$array" --output="$logs/%j-collect.log" \
    --job-name=bluetooth-logs-collect --wrap="$(printf '%q ' "$program" collect "$case_folder")")
echo "$array $collecting"
