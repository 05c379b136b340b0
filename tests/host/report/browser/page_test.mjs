// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node page_test.mjs MODULES PROGRAM: tries a report page in a real browser. MODULES holds node_modules with puppeteer-core
// and axe-core. Ends with 77 where these or a browser are missing.

import assert from "node:assert/strict";
import {execFileSync} from "node:child_process";
import {existsSync, mkdtempSync, readFileSync, rmSync} from "node:fs";
import {createRequire} from "node:module";
import {tmpdir} from "node:os";
import {join} from "node:path";
import {pathToFileURL} from "node:url";

const [modules, program] = process.argv.slice(2);
const skip = reason => {
    console.log(`SKIP: ${reason}`);
    process.exit(77);
};
const browserFile = ["/usr/bin/chromium-headless-shell", "/usr/bin/chromium"].find(file => existsSync(file));
if (!browserFile)
    skip("there is no Chromium: Debian's packages are chromium-headless-shell and chromium");
if (!existsSync(join(modules, "node_modules/puppeteer-core")) || !existsSync(join(modules, "node_modules/axe-core")))
    skip(`puppeteer-core and axe-core are missing in ${modules}: scripts/browser_tests.sh installs them`);
const require = createRequire(join(modules, "any.js"));
const puppeteer = require("puppeteer-core");
const axe = readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");

const folder = mkdtempSync(join(tmpdir(), "report-page-"));
const run = (...words) => execFileSync(program, words, {cwd: folder, stdio: ["ignore", "ignore", "inherit"]});
run("-q", "sample", "S");
run("-q", "extract", "-i", "S/macos", "-i", "S/ios/system.log", "-o", "CASE");
run("-q", "report", "CASE");

const browser = await puppeteer.launch({
    executablePath: browserFile,
    headless: "shell",
    args: process.getuid() === 0 ? ["--no-sandbox"] : [],
});
let failures = 0;

/** Runs one test on a fresh page; what the page says on its console or asks for fails it too. */
async function test(name, work, options = {}) {
    const page = await browser.newPage();
    const faults = [];
    page.on("pageerror", error => faults.push(`error: ${error.message}`));
    page.on("console", message => faults.push(`console: ${message.text()}`));
    page.on("dialog", async dialog => {
        faults.push(`dialog: ${dialog.message()}`);
        await dialog.dismiss();
    });
    page.on("request", request => {
        if (request.url() !== address)
            faults.push(`request: ${request.url()}`);
    });
    try {
        await page.setViewport({width: 1280, height: 900});
        await page.setJavaScriptEnabled(options.script ?? true);
        if (options.features)
            await page.emulateMediaFeatures(options.features);
        await page.goto(address);
        await work(page);
        assert.deepEqual(faults, []);
        console.log(`ok   ${name}`);
    } catch (error) {
        ++failures;
        console.log(`FAIL ${name}\n${error.stack}`);
    }
    await page.close();
}

const address = pathToFileURL(join(folder, "CASE/Report/report.html")).href;
const status = page => page.$eval("#devices [role=status]", element => element.textContent);
const rowCount = page => page.$eval("#devices table", element => Number(element.getAttribute("aria-rowcount")) - 1);
const column = (page, name) => page.evaluate(wanted => {
    const headings = [...document.querySelectorAll("#devices th")].map(heading => heading.textContent);
    const place = headings.indexOf(wanted);
    return [...document.querySelectorAll("#devices tbody tr:not(.space)")].map(row => row.cells[place].textContent);
}, name);
const violations = async page => {
    await page.evaluate(axe);
    const found = await page.evaluate(() => window.axe.run({runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa"]}));
    return found.violations.map(one => `${one.id}: ${one.nodes.slice(0, 3).map(node => node.html.slice(0, 200)).join(" | ")}`);
};

await test("only some rows stand in the document", async page => {
    assert.equal(await rowCount(page), 1050);
    assert.ok((await page.$$("#devices tbody tr")).length < 100);
});

await test("sorting by a column", async page => {
    const heading = await page.$("xpath///section[@id='devices']//th[button[text()='plugin_last_seen_time']]");
    const button = await heading.$("button");
    await button.click();
    assert.equal(await heading.evaluate(element => element.getAttribute("aria-sort")), "ascending");
    await button.click();
    assert.equal(await heading.evaluate(element => element.getAttribute("aria-sort")), "descending");
    const seen = (await column(page, "plugin_last_seen_time")).map(Number);
    assert.deepEqual(seen, [...seen].sort((one, two) => two - one));
    assert.equal((await column(page, "rank_last_seen"))[0], "1");
});

await test("filtering as one types", async page => {
    await page.type("#devices-filter", "KITCHEN sp");
    assert.match(await status(page), /^\d+ of 1,050 rows$/);
    assert.ok((await column(page, "plugin_device_name")).every(name => name.toLowerCase().includes("kitchen sp")));
    assert.equal(await rowCount(page), Number((await status(page)).split(" ")[0]));
});

await test("a row is opened, copied and closed with the keyboard alone", async page => {
    await page.focus("#devices-filter");
    await page.keyboard.type("living room");
    let label = "";
    for (let press = 0; press < 100 && !label.startsWith("Row "); ++press) {
        await page.keyboard.press("Tab");
        label = await page.evaluate(() => document.activeElement.getAttribute("aria-label") ?? "");
    }
    await page.keyboard.press("Enter");
    assert.ok(await page.$eval("#row", dialog => dialog.open && dialog.textContent.includes("Living Room TV")));
    await page.keyboard.press("Escape");
    assert.ok(await page.$eval("#row", dialog => !dialog.open));
    assert.match(await page.evaluate(() => document.activeElement.getAttribute("aria-label")), /^Row /);
});

await test("scrolling shows the rows that come into view", async page => {
    await page.$eval("#devices .window", view => { view.scrollTop = view.scrollHeight; });
    await page.waitForFunction(() => document.querySelector("#devices tbody tr:last-child").getAttribute("aria-rowindex") === "1051");
});

await test("evidence stays text", async page => {
    await page.type("#devices-filter", "<script>");
    assert.ok((await column(page, "plugin_device_name")).includes("<b>bold</b><script>alert(1)</script>"));
    assert.equal((await page.$$("script")).length, 2);
    assert.equal((await page.$$("#devices b")).length, 0);
});

await test("printing shows every row that is left", async page => {
    await page.evaluate(() => window.dispatchEvent(new Event("beforeprint")));
    assert.equal((await page.$$("#devices tbody tr")).length, 1050);
    await page.evaluate(() => window.dispatchEvent(new Event("afterprint")));
    assert.ok((await page.$$("#devices tbody tr")).length < 100);
    assert.ok((await page.pdf({timeout: 0})).length > 10000);
});

await test("without script", async page => {
    assert.equal((await page.$$("#devices tbody tr")).length, 200);
    assert.ok(await page.$("#more-than-one-source"));
}, {script: false});

for (const scheme of ["light", "dark"]) {
    await test(`axe, ${scheme}`, async page => assert.deepEqual(await violations(page), []),
               {features: [{name: "prefers-color-scheme", value: scheme}]});
}
await test("axe, print", async page => {
    await page.emulateMediaType("print");
    assert.deepEqual(await violations(page), []);
});
await test("axe, narrow", async page => {
    await page.setViewport({width: 320, height: 800});
    assert.deepEqual(await violations(page), []);
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
});

await browser.close();
rmSync(folder, {recursive: true});
process.exit(failures > 0 ? 1 : 0);
