// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node page_test.mjs MODULES PROGRAM [WORDS]: tries pages of reports in a real browser. MODULES holds node_modules with
// puppeteer-core and axe-core. WORDS: only the tests whose name holds them. Ends with 77 where these or a browser are
// missing.

import assert from "node:assert/strict";
import {execFileSync} from "node:child_process";
import {mkdtempSync, rmSync, writeFileSync} from "node:fs";
import {tmpdir} from "node:os";
import {join} from "node:path";
import {pathToFileURL} from "node:url";

import {startBrowser} from "./browser.mjs";

const [modules, program, words = ""] = process.argv.slice(2);
const {browser, axe} = await startBrowser(modules);
const folder = mkdtempSync(join(tmpdir(), "report-page-"));
const run = (...words) => execFileSync(program, ["-q", ...words], {cwd: folder, stdio: ["ignore", "ignore", "inherit"]});
const addressOf = page => pathToFileURL(join(folder, page)).href;

// A usual case, and one with more rows than are printed.
const rowsOfSample = 1053;
run("sample", "sample", "--hostile");
run("extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-o", "case");
run("report", "case");
run("report", "case", "--split", "-o", "split");
const report = addressOf("case/Report/report.html");

const manyRows = 5300;
writeFileSync(join(folder, "long.log"), Array.from({length: manyRows}, (unused, line) =>
    `May 17 12:11:05 phone sharingd(CoreUtils)[102] <Notice>: BLE device found: SFDevice ID ${line}, IDS 1, RSSI -60, ` +
    `Nm '${line % 1000 === 0 ? "rare" : "usual"} device ${line}', Md 'Model1,1', AID 7F\n`).join(""));
run("extract", "-i", "long.log", "-o", "long");
run("report", "long");
const longReport = addressOf("long/Report/report.html");

let failures = 0;

/** Runs one test on a fresh page; a message on its console, a dialog or a request for anything else fails it too. */
async function test(name, work, {address = report, others = [], script = true, scheme = "light"} = {}) {
    if (!name.includes(words))
        return;
    const page = await browser.newPage();
    const faults = [];
    page.on("pageerror", error => faults.push(`error: ${error.message}`));
    page.on("console", message => faults.push(`console: ${message.text()}`));
    page.on("dialog", async dialog => {
        faults.push(`dialog: ${dialog.message()}`);
        await dialog.dismiss();
    });
    page.on("request", request => {
        if (![address, ...others].includes(request.url().split("#")[0]))
            faults.push(`request: ${request.url()}`);
    });
    const start = Date.now();
    let result = "ok  ";
    try {
        await page.setViewport({width: 1280, height: 900});
        await page.setJavaScriptEnabled(script);
        await page.emulateMediaFeatures([{name: "prefers-color-scheme", value: scheme}]);
        await page.goto(address);
        await work(page);
        assert.deepEqual(faults, []);
    } catch (error) {
        ++failures;
        result = `FAIL ${error.stack}\n    `;
    }
    console.log(`${result} ${name} (${((Date.now() - start) / 1000).toFixed(1)} s)`);
    await page.close();
}

const textOf = (page, selector) => page.$eval(selector, element => element.textContent);
const status = page => textOf(page, "#devices [role=status]");
const rowCount = page => page.$eval("#devices table", element => Number(element.getAttribute("aria-rowcount")) - 1);
const column = (page, name) => page.evaluate(wanted => {
    const headings = [...document.querySelectorAll("#devices th")].map(heading => heading.textContent);
    const place = headings.indexOf(wanted);
    return [...document.querySelectorAll("#devices tbody tr:not(.space)")].map(row => row.cells[place].textContent);
}, name);
const violations = async page => {
    await page.evaluate(axe);
    const found = await page.evaluate(() =>
        window.axe.run({runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"]}));
    return found.violations.map(one => `${one.id}: ${one.nodes.slice(0, 3).map(node => node.html.slice(0, 200)).join(" | ")}`);
};
const setFilter = async (page, words) => {
    await page.$eval("#devices-filter", input => { input.value = ""; });
    await page.type("#devices-filter", words);
};
const focused = page => page.evaluate(() => {
    const element = document.activeElement;
    return {
        name: element.getAttribute("aria-label") ?? element.textContent,
        id: element.id,
        isOutlined: getComputedStyle(element).outlineStyle !== "none" && parseFloat(getComputedStyle(element).outlineWidth) >= 2,
    };
});
/** Presses Tab until the wanted element has the focus; on the way the focus is always seen. */
const tabTo = async (page, isWanted) => {
    for (let press = 0; press < 200; ++press) {
        await page.keyboard.press("Tab");
        const now = await focused(page);
        assert.ok(now.isOutlined, `the focus is not seen: ${JSON.stringify(now)}`);
        if (isWanted(now))
            return now;
    }
    return assert.fail("it is not reached with the keyboard");
};
const indices = page => page.$$eval("#devices tbody tr:not(.space)", rows => rows.map(row => Number(row.getAttribute("aria-rowindex"))));

await test("only some rows stand in the document, and say which", async page => {
    assert.equal(await rowCount(page), rowsOfSample);
    const shown = await indices(page);
    assert.ok(shown.length > 10 && shown.length < 100);
    assert.deepEqual(shown, shown.map((unused, place) => place + 2)); // the header is 1
});

await test("scrolling shows the rows that come into view", async page => {
    await page.$eval("#devices .window", view => { view.scrollTop = view.scrollHeight; });
    await page.waitForFunction(last =>
        document.querySelector("#devices tbody tr:last-child").getAttribute("aria-rowindex") === String(last),
        {}, rowsOfSample + 1);
    const shown = await indices(page);
    assert.deepEqual(shown, shown.map((unused, place) => shown[0] + place));
});

await test("sorting by a column", async page => {
    const heading = await page.$("xpath///section[@id='devices']//th[button[text()='plugin_last_seen_time']]");
    const button = await heading.$("button");
    const sorted = () => heading.evaluate(element => element.getAttribute("aria-sort"));
    assert.equal(await sorted(), "none");
    await button.click();
    assert.equal(await sorted(), "ascending");
    await button.click();
    assert.equal(await sorted(), "descending");
    const seen = (await column(page, "plugin_last_seen_time")).map(Number);
    assert.deepEqual(seen, [...seen].sort((one, two) => two - one));
    assert.equal((await column(page, "rank_last_seen"))[0], "1");
    assert.equal((await page.$$("#devices th[aria-sort=ascending], #devices th[aria-sort=descending]")).length, 1);
});

await test("filtering as one types", async page => {
    await page.$eval("#devices .window", view => { view.scrollTop = 9000; });
    await setFilter(page, "KITCHEN sp");
    assert.match(await status(page), /^\d+ of 1,053 rows$/);
    const names = await column(page, "plugin_device_name");
    assert.ok(names.length > 0 && names.every(name => name.toLowerCase().includes("kitchen sp")));
    assert.equal(await rowCount(page), Number((await status(page)).split(" ")[0]));
    assert.equal((await indices(page))[0], 2);
    await setFilter(page, "there is no such row");
    assert.equal(await status(page), "0 of 1,053 rows");
    assert.equal((await page.$$("#devices tbody tr")).length, 0);
    await setFilter(page, " ");
    await page.keyboard.press("Backspace");
    assert.equal(await status(page), "1,053 rows");
});

await test("the keyboard alone sorts, filters, opens, copies and closes", async page => {
    await tabTo(page, now => now.name === "To the content");
    await page.keyboard.press("Enter");
    await tabTo(page, now => now.id === "devices-filter");
    await page.keyboard.type("living room");
    await tabTo(page, now => now.name === "plugin_device_name");
    await page.keyboard.press("Space");
    assert.equal(await page.$eval("#devices th[aria-sort=ascending]", element => element.textContent), "plugin_device_name");
    const row = await tabTo(page, now => now.name.startsWith("Row "));
    await page.keyboard.press("Enter");
    assert.ok(await page.$eval("#row", dialog => dialog.open && dialog.textContent.includes("Living Room TV")));
    await page.evaluate(() => document.addEventListener("copy", () => { window.copied = document.getSelection().toString() ||
        document.activeElement.value; }));
    if ((await focused(page)).name !== "Copy this row")
        await tabTo(page, now => now.name === "Copy this row");
    await page.keyboard.press("Enter");
    assert.equal(await textOf(page, "#row [role=status]"), "Copied.");
    const copied = (await page.evaluate(() => window.copied)).split("\n");
    assert.ok(copied.includes("source\t1") && copied.includes("plugin_device_name\tLiving Room TV"), copied.join("\n"));
    await page.keyboard.press("Escape");
    assert.ok(await page.$eval("#row", dialog => !dialog.open));
    assert.equal((await focused(page)).name, row.name);
});

await test("the keyboard scrolls, and the focus is never lost", async page => {
    const scrolledTo = place => page.waitForFunction(wanted => {
        const view = document.querySelector("#devices .window");
        const isThere = Math.abs(view.scrollTop - wanted * (view.scrollHeight - view.clientHeight)) <= 1;
        const wasThere = view.dataset.wasThere === "yes"; // the browser is done with scrolling when it stays
        view.dataset.wasThere = isThere ? "yes" : "no";
        return isThere && wasThere;
    }, {polling: 300}, place);
    await page.focus("#devices tbody button");
    await page.keyboard.press("End");
    await scrolledTo(1);
    assert.equal((await indices(page)).at(-1), rowsOfSample + 1);
    assert.ok(await page.evaluate(() => document.activeElement.matches("#devices .window")));
    await page.keyboard.press("Home");
    await scrolledTo(0);
    assert.equal((await indices(page))[0], 2);
});

await test("hostile names stay text", async page => {
    const wanted = {
        "<img src=x": "<img src=x onerror=alert(1)>",
        "</script><script>": "</script><script>alert(1)</script>",
        "<!--": "<!--",
        "]]>": "]]>",
        "javascript:": "javascript:alert(1)",
        "=cmd|": "=cmd|'/C calc'!A0",
        "]0;title": "\\u{1b}[31mred\\u{1b}[0m \\u{1b}]0;title\\u{7}",
        "gpj.exe": "photo\\u{202e}gpj.exe",
        "paragraph": "a line\\u{2028}and a paragraph\\u{2029}end",
        "NUL \\u{0}": "NUL \\u{0} inside",
        "lone surrogate": "lone surrogate \ufffd inside",
        "1048572 bytes": "<img src=x onerror=alert(1)>".repeated,
    };
    for (const [words, name] of Object.entries(wanted)) {
        await setFilter(page, words);
        const names = await column(page, "plugin_device_name");
        assert.ok(name === undefined ? names.length === 1 && names[0].length < 5000 : names.includes(name), `${words}: ${names}`);
        await page.click("#devices tbody button");
        assert.equal(await page.$$eval("#row img, #row a, #row script, #row b", elements => elements.length), 0);
        await page.keyboard.press("Escape");
    }
    assert.equal((await page.$$("script")).length, 2);
    assert.equal((await page.$$("img, iframe, object, embed, form, a:not([href^='#'])")).length, 0);
    const acting = /[\u0000-\u0008\u000b-\u001f\u007f-\u009f\u2028-\u202e\u2066-\u2069]/u;
    assert.ok(!acting.test(await page.content()));
});

await test("every text of the evidence is isolated", async page => {
    assert.equal(await page.evaluate(() => [...document.querySelectorAll("#devices tbody td:not(:first-child)")]
        .filter(cell => cell.textContent !== "" && !cell.querySelector("bdi, .null")).length), 0);
    assert.deepEqual(await page.$eval("html", element => [element.lang, element.dir]), ["en", "ltr"]);
});

const pagesOf = pdf => Buffer.from(pdf).toString("latin1").match(/\/Type\s*\/Page\b/g).length;
/** What stands in the document while the browser itself prints. */
const watchPrint = page => page.evaluate(() => window.addEventListener("beforeprint", () => {
    window.printed = {
        rows: document.querySelectorAll("#devices tbody tr").length,
        note: document.querySelector("#devices .print-only").textContent,
    };
}));

await test("printing shows every row that is left", async page => {
    await setFilter(page, "speaker");
    await watchPrint(page);
    assert.ok(pagesOf(await page.pdf({timeout: 0})) > 1);
    const {rows, note} = await page.evaluate(() => window.printed);
    assert.ok(rows > 1 && rows < 100);
    assert.equal(rows, await rowCount(page));
    assert.equal(note, `Filtered by “speaker”: ${rows} of 1,053 rows.`);
});

await test("printing stops at 5,000 rows of a table and tells it", async page => {
    await watchPrint(page);
    const pages = pagesOf(await page.pdf({timeout: 0}));
    assert.deepEqual(await page.evaluate(() => window.printed), {
        rows: 5000,
        note: "The first 5,000 of 5,300 rows are printed, 300 are left out: filter the table, or use the CSV files.",
    });
    assert.ok(pages > 100, `${pages} pages`);
    assert.ok((await page.$$("#devices tbody tr")).length < 100); // again, after the print
}, {address: longReport});

await test("nothing is cut off on paper", async page => {
    await page.emulateMediaType("print");
    await page.setViewport({width: 794 - 90, height: 1123}); // A4 upright, less its margins
    await page.evaluate(() => window.dispatchEvent(new Event("beforeprint")));
    assert.deepEqual(await page.evaluate(() => [...document.querySelectorAll("main *")]
        .filter(element => element.checkVisibility() && element.getBoundingClientRect().right > window.innerWidth + 1)
        .map(element => element.outerHTML.slice(0, 100)).slice(0, 5)), []);
    assert.ok(await page.evaluate(() => [...document.querySelectorAll("#devices tbody td")].slice(0, 200).every(cell =>
        getComputedStyle(cell, "::before").content.startsWith(`"${cell.dataset.column ?? "Row"}`))));
});

const sections = ["summary", "more-than-one-source", "cards", "devices", "paired-devices", "wal-changes", "ranks", "limitations"];
await test("the sections with script", async page => {
    assert.deepEqual(await page.$$eval("main section", found => found.map(section => section.id)), sections);
    assert.match(await textOf(page, "#summary .with-script"), /not with the browser's search/);
    assert.ok(await page.$eval("#summary .with-script", note => note.checkVisibility()));
});

await test("without script", async page => {
    assert.deepEqual(await page.$$eval("main section", found => found.map(section => section.id)), sections);
    assert.equal((await page.$$("#devices tbody tr")).length, 200);
    assert.equal(await textOf(page, "#devices .without-script"), "Without script these are the first 200 of 1053 rows.");
    assert.ok(await page.$eval("#devices .without-script", note => note.checkVisibility()));
    assert.ok(await page.$eval("noscript .alarm", note => note.checkVisibility()));
    assert.equal(await page.$eval("#devices .tools", tools => tools.checkVisibility()), false);
}, {script: false});

for (const scheme of ["light", "dark"])
    await test(`axe, ${scheme}`, async page => assert.deepEqual(await violations(page), []), {scheme});
await test("axe, print", async page => {
    await page.emulateMediaType("print");
    assert.deepEqual(await violations(page), []);
});
await test("axe, a row opened", async page => {
    await page.click("#devices tbody button");
    assert.deepEqual(await violations(page), []);
});
for (const name of ["report", "report-source1", "report-source2"]) {
    await test(`axe, ${name} of a split report`, async page => assert.deepEqual(await violations(page), []),
               {address: addressOf(`split/${name}.html`)});
}
await test("the pages of a split report lead to each other", async page => {
    const index = page.url();
    await page.click("a[href='report-source2.html']");
    await page.waitForSelector("#devices [role=status]:not(:empty)");
    assert.equal(await status(page), "50 rows");
    await page.click("a[href='report.html']");
    await page.waitForFunction(address => document.URL.split("#")[0] === address, {}, index);
}, {address: addressOf("split/report.html"), others: [addressOf("split/report-source2.html")]});
// 1280 pixels at 200 % and at 400 %
for (const [width, scheme] of [[640, "light"], [320, "dark"]]) {
    await test(`axe and no sideways scrolling, ${width} pixels`, async page => {
        await page.setViewport({width, height: 450, deviceScaleFactor: 1280 / width});
        assert.deepEqual(await violations(page), []);
        assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
        await setFilter(page, "kitchen");
        assert.ok((await column(page, "plugin_device_name")).length > 0);
        await page.click("#devices tbody button");
        assert.ok(await page.$eval("#row", dialog => dialog.scrollWidth <= dialog.clientWidth));
    }, {scheme});
}

await browser.close();
rmSync(folder, {recursive: true});
process.exit(failures > 0 ? 1 : 0);
