#!/usr/bin/env bash
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# scripts/browser_tests.sh [BUILD]  installs what the tests of report pages need into BUILD/browser (default
# build/release/browser): puppeteer-core and axe-core from npm, with the node that is there. The browser is Debian's
# chromium-headless-shell or chromium. Without them the tests say that they are skipped.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=${1:-build/release}/browser

if ! command -v npm >/dev/null; then
    echo "note: there is no npm, the tests of report pages in a browser are skipped" >&2
    exit 0
fi
mkdir -p "$folder"
cp tests/host/report/browser/package.json "$folder/"
PUPPETEER_SKIP_DOWNLOAD=1 npm --prefix "$folder" install --no-audit --no-fund --silent ||
    echo "note: puppeteer-core and axe-core cannot be installed, the tests of report pages in a browser are skipped" >&2
