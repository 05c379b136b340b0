// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node scripts/report_pictures.mjs PROGRAM FOLDER [MODULES]
// Takes pictures of a report of the sample into FOLDER: light.png, dark.png, narrow.png, print.pdf, and report.png for
// README.md, which is docs/report.png. ./test.sh installs what it needs into build/browser, the usual MODULES.

import {execFileSync} from "node:child_process";
import {mkdirSync, mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join, resolve} from "node:path";
import {pathToFileURL} from "node:url";

import {startBrowser} from "../tests/host/report/browser/browser.mjs";

const [program, folder, modules = "build/browser"] = process.argv.slice(2).map(word => resolve(word));
const {browser} = await startBrowser(modules ?? resolve("build/browser"));
mkdirSync(folder, {recursive: true});

const place = mkdtempSync(join(tmpdir(), "report-pictures-"));
const run = (...words) => execFileSync(program, ["-q", ...words], {cwd: place, stdio: ["ignore", "ignore", "inherit"]});
run("sample", "sample");
run("extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-o", "case", "--case-number", "2026-0147",
    "--examiner", "A. Example");
run("report", "case");

async function take(name, {width, height, scheme = "light", scale = 1, prepare = async () => {}}) {
    const page = await browser.newPage();
    await page.setViewport({width, height, deviceScaleFactor: scale});
    await page.emulateMediaFeatures([{name: "prefers-color-scheme", value: scheme}]);
    await page.goto(pathToFileURL(join(place, "case/Report/report.html")).href);
    await prepare(page);
    await page.screenshot({path: join(folder, name)});
    await page.close();
}

const toDevices = async page => {
    await page.type("#devices-filter", "o");
    await page.$eval("#devices", section => section.scrollIntoView());
};
await take("light.png", {width: 1280, height: 1600});
await take("light-devices.png", {width: 1280, height: 1000, prepare: toDevices});
await take("dark.png", {width: 1280, height: 1600, scheme: "dark"});
await take("dark-devices.png", {width: 1280, height: 1000, scheme: "dark", prepare: toDevices});
await take("narrow.png", {width: 320, height: 1600, scale: 2});
await take("narrow-devices.png", {width: 320, height: 900, scale: 2, prepare: toDevices});
const page = await browser.newPage();
await page.goto(pathToFileURL(join(place, "case/Report/report.html")).href);
console.time("pdf");
await page.pdf({path: join(folder, "print.pdf"), format: "A4", timeout: 0, preferCSSPageSize: true});
console.timeEnd("pdf");
await browser.close();
rmSync(place, {recursive: true});
