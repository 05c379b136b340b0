// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node scripts/report_pictures.mjs PROGRAM FOLDER [MODULES]
// Takes pictures of a report of the sample into FOLDER: light, dark and narrow ones, print.pdf, and report.png,
// report-device.png and report-print.png, which are those of docs/. MODULES is build/browser unless it is given; ./test.sh
// installs what is needed there.

import {execFileSync} from "node:child_process";
import {mkdirSync, mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join, resolve} from "node:path";
import {pathToFileURL} from "node:url";

import {startBrowser} from "../tests/host/report/browser/browser.mjs";

const [program, folder, modules] = process.argv.slice(2).concat("build/browser").map(word => resolve(word));
const {browser} = await startBrowser(modules);
mkdirSync(folder, {recursive: true});

const place = mkdtempSync(join(tmpdir(), "report-pictures-"));
const run = (...words) => execFileSync(program, ["-q", ...words], {cwd: place, stdio: ["ignore", "ignore", "inherit"]});
run("sample", "sample");
run("extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-o", "case", "--case-number", "2026-0147",
    "--examiner", "A. Example");
run("report", "case");

const address = pathToFileURL(join(place, "case/Report/report.html")).href;

async function take(name, {width, height, scheme = "light", scale = 1, prepare = async () => {}}) {
    const page = await browser.newPage();
    await page.setViewport({width, height, deviceScaleFactor: scale});
    await page.emulateMediaFeatures([{name: "prefers-color-scheme", value: scheme}]);
    await page.goto(address);
    await prepare(page);
    await page.screenshot({path: join(folder, name)});
    await page.close();
}

const toFilter = async page => {
    await page.type("#devices-filter", "o");
    await page.$eval("#devices", section => section.scrollIntoView());
};
const toShared = async page => {
    await page.click("#more-than-one-source tbody a");
    await page.waitForSelector("section.device");
};

await take("report.png", {width: 1200, height: 760});
await take("report-device.png", {width: 1200, height: 760, prepare: toShared});
for (const scheme of ["light", "dark"]) {
    await take(`${scheme}.png`, {width: 1280, height: 1600, scheme});
    await take(`${scheme}-filter.png`, {width: 1280, height: 1000, scheme, prepare: toFilter});
}
await take("narrow.png", {width: 320, height: 1600, scale: 2});
await take("narrow-filter.png", {width: 320, height: 900, scale: 2, prepare: toFilter});
const page = await browser.newPage();
await page.goto(address);
await page.pdf({path: join(folder, "print.pdf"), format: "A4", timeout: 0});
await browser.close();
try {
    execFileSync("pdftoppm", ["-png", "-r", "70", "-f", "1", "-l", "1", "-singlefile", join(folder, "print.pdf"), join(folder, "report-print")]);
} catch {
    console.log("no report-print.png: pdftoppm (poppler-utils) is missing");
}
rmSync(place, {recursive: true});
