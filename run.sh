#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# ./run.sh            builds, extracts freshly made synthetic sources, shows their first rows and writes a report
# ./run.sh ARGUMENTS  builds and runs bluetooth-logs with them: ./run.sh extract -i SOURCE -o CASE

set -euo pipefail
called_from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/setup.sh

set_up
host=$PWD/build/release/bluetooth-logs
is_built release || echo "Building bluetooth-logs, which takes some minutes the first time ..." >&2
build release --target bluetooth-logs
touch build/release/built

if [ $# -gt 0 ]; then
    cd "$called_from"
    exec "$host" "$@"
fi

folder=$PWD/build/run
rows=20
mkdir -p "$folder"
echo "Writing a synthetic sample and extracting it ..." >&2
"$host" --quiet sample "$folder/sample" --force
"$host" extract -i "$folder/sample/macos" -i "$folder/sample/ios/system.log" -o "$folder/case" --force
echo
"$host" show "$folder/case" --rows "$rows"
echo
"$host" --quiet report "$folder/case" --force
echo "These are the first $rows rows of each table. The case stays in $folder/case; all of its rows:"
printf '  %q show %q\n' "$host" "$folder/case"
echo "A report of it for your browser: $folder/case/Report/report.html"
