// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// A headless browser for the pages of reports.

import {existsSync, readFileSync} from "node:fs";
import {createRequire} from "node:module";
import {join, resolve} from "node:path";

const browserFiles = ["/usr/bin/chromium-headless-shell", "/usr/bin/chromium"];

function skip(reason) {
    console.log(`skipped: ${reason}`);
    process.exit(77);
}

/**
 * The browser, and the text of axe-core's script. modules is the folder whose node_modules hold puppeteer-core and
 * axe-core. Ends the program with 77 where something is missing.
 */
export async function startBrowser(modules) {
    const file = browserFiles.find(one => existsSync(one));
    if (!file)
        skip(`none of these browsers is there: ${browserFiles.join(", ")}`);
    if (!["puppeteer-core", "axe-core"].every(name => existsSync(join(modules, "node_modules", name))))
        skip(`puppeteer-core or axe-core is missing in ${modules}: ./test.sh installs them`);
    const require = createRequire(join(resolve(modules), "any.js"));
    const browser = await require("puppeteer-core").launch({
        executablePath: file,
        headless: "shell",
        protocolTimeout: 600_000, // printing takes minutes where the machine is busy
        args: [
            "--disable-gpu", "--process-per-site", "--js-flags=--single-threaded", // the other cores have tests of their own
            ...process.getuid() === 0 ? ["--no-sandbox"] : [], // the sandbox refuses to work for root
        ],
    });
    return {browser, axe: readFileSync(require.resolve("axe-core/axe.min.js"), "utf8")};
}
