#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# ./run.sh            builds, extracts a freshly made synthetic source and shows the rows
# ./run.sh ARGUMENTS  builds and runs bluetooth-logs with them: ./run.sh extract -i SOURCE -o CASE

set -euo pipefail
called_from=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/setup.sh

set_up
build release --target bluetooth-logs
host=$PWD/build/release/bluetooth-logs
cd "$called_from"

if [ $# -gt 0 ]; then
    exec "$host" "$@"
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$host" --quiet sample "$folder/sample"
"$host" --quiet extract -i "$folder/sample/macos" -o "$folder/case"
"$host" show "$folder/case"
