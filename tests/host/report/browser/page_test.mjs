// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node page_test.mjs MODULES PROGRAM [WORDS]: tries pages of reports in a real browser. MODULES holds node_modules with
// puppeteer-core and axe-core. WORDS: only the tests whose name holds them. Ends with 77 where these or a browser are
// missing.

import assert from "node:assert/strict";
import {execFile} from "node:child_process";
import {createHash} from "node:crypto";
import {cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync} from "node:fs";
import {tmpdir} from "node:os";
import {join} from "node:path";
import {pathToFileURL} from "node:url";
import {promisify} from "node:util";

import {startBrowser} from "./browser.mjs";

const [modules, program, words = ""] = process.argv.slice(2);
const {browser, axe} = await startBrowser(modules);
const folder = mkdtempSync(join(tmpdir(), "report-page-"));
const run = async (...words) => {
    await promisify(execFile)(program, ["-q", ...words], {cwd: folder});
};
const addressOf = page => pathToFileURL(join(folder, page)).href;

const sightedRows = 5300; // more than are printed
const manyLogs = 40;
const noted = "B4:C2:6A:7F:D3:7A";

function writeLog(name, lines) {
    mkdirSync(join(folder, name));
    writeFileSync(join(folder, name, "system.log"), lines.join(""));
}

/** Lines of devices in use whose names are as long and as wide as names get. */
function activeLines(count) {
    return Array.from({length: count}, (unused, line) =>
        `May 17 ${String(10 + line % 13)}:11:05 phone bluetoothd[70] <Notice>: Connected active device: Endpoint E233, PI ` +
        `${line === 0 ? noted : `00:1B:66:00:00:${(line % 256).toString(16).padStart(2, "0")}`.toUpperCase()}, ` +
        `Nm '${"ワイヤレスイヤホン長い名前".repeat(3)} W ${line}', Md 'Model1,1'\n`);
}

function writeNotes(folderOfCase) {
    const lines = Array.from({length: 70}, (unused, line) => JSON.stringify({
        number: line + 1, time: "2026-01-02T03:04:05Z", by: "A. Example of a rather long name",
        device: line === 0 ? noted : `00:1B:66:00:00:${line.toString(16).padStart(2, "0")}`.toUpperCase(), row: null, flag: true,
        text: "what an examiner has to say of a device ".repeat(20)}));
    writeFileSync(join(folder, folderOfCase, "notes.jsonl"), `${lines.join("\n")}\n`);
}

/** A usual case, alone and in pages; two systems that know the same devices; many rows; many sources. */
async function makeCases() {
    await run("sample", "sample", "--hostile");
    // It knows paired devices by its preferences alone.
    cpSync(join(folder, "sample/macos"), join(folder, "twin"), {recursive: true, filter: file => !file.includes("ledevices.paired")});
    writeLog("long", Array.from({length: sightedRows}, (unused, line) =>
        `May 17 12:11:05 phone sharingd(CoreUtils)[102] <Notice>: BLE device found: SFDevice ID ${line}, IDS 1, RSSI -60, ` +
        `Nm '${line % 1000 === 0 ? "rare" : "usual"} device ${line}', Md 'Model1,1', AID 7F\n`));
    const many = Array.from({length: manyLogs}, (unused, log) => `many${log}`);
    many.forEach(name => writeLog(name, activeLines(60)));
    await Promise.all([
        run("extract", "-i", "sample/macos", "-i", "sample/ios/system.log", "-o", "case", "--case-number", "2026-0147")
            .then(() => run("report", "case", "-f", "html", "-f", "jsonl"))
            .then(() => run("report", "case", "--split", "--brief", "-o", "split")),
        run("extract", "-i", "sample/macos", "-i", "twin", "-i", "sample/ios/system.log", "-o", "shared")
            .then(() => run("report", "shared", "--brief")),
        run("extract", "-i", "long/system.log", "-o", "longcase").then(() => run("report", "longcase")),
        run("extract", ...many.flatMap(name => ["-i", `${name}/system.log`]), "-o", "manycase", "--jobs", "1")
            .then(() => writeNotes("manycase"))
            .then(() => run("report", "manycase", "--brief")),
    ]);
}

await makeCases();
const report = addressOf("case/Report/report.html");
const linesOf = name => readFileSync(join(folder, "case/Report", name), "utf8").trim().split("\n").map(line => JSON.parse(line));
const rows = linesOf("devices.jsonl");
const rowsOfSample = rows.length;
const allRows = `${rowsOfSample.toLocaleString("en")} rows`;

const sharedReport = addressOf("shared/Report/report.html");
const longReport = addressOf("longcase/Report/report.html");
const manyReport = addressOf("manycase/Report/report.html");

let failures = 0;
const tests = [];

/** A test on a fresh page; a message on its console, a dialog or a request for anything else fails it too. */
function test(name, work, {address = report, others = [], script = true, scheme = "light"} = {}) {
    if (name.includes(words))
        tests.push({name, work, address, others, script, scheme});
}

async function runTest(browser, {name, work, address, others, script, scheme}) {
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

/** Tests are taken by turns; a browser has one page at a time, which has the focus. */
async function runTests(browser) {
    for (let next = tests.shift(); next; next = tests.shift())
        await runTest(browser, next);
    await browser.close();
}

const textOf = (page, selector) => page.$eval(selector, element => element.textContent);
const status = page => textOf(page, "#devices [role=status]");
const rowCount = page => page.$eval("#devices table", element => Number(element.getAttribute("aria-rowcount")) - 2);
const column = (page, name) => page.evaluate(wanted => {
    const headings = [...document.querySelectorAll("#devices thead th[aria-sort]")].map(heading => heading.firstChild.dataset.column);
    const place = headings.indexOf(wanted) + 1;
    return [...document.querySelectorAll("#devices tbody tr:not(.space)")].map(row => row.cells[place].textContent);
}, name);
const heading = name => `#devices th button[data-column=${name}]`;
/** What axe-core finds in the page, or in a part of it where the rest is as in another test. */
const violations = async (page, part = "html") => {
    const {width, height, deviceScaleFactor} = page.viewport();
    await page.setViewport({width, height: Math.min(height, 300), deviceScaleFactor}); // rows are alike: few are enough
    await page.$$eval("input[id$=-filter]", inputs => inputs.filter(input => input.value === "").forEach(input => {
        input.value = "kitchen speaker";
        input.dispatchEvent(new Event("input"));
    }));
    await page.evaluate(axe);
    const found = await page.evaluate(context =>
        window.axe.run(context, {resultTypes: ["violations"], runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"]}), part);
    return found.violations.map(one => `${one.id}: ${one.nodes.slice(0, 3).map(node => node.html.slice(0, 200)).join(" | ")}`);
};
const setFilter = (page, words, table = "devices") => page.$eval(`#${table}-filter`, (input, text) => {
    input.value = text;
    input.dispatchEvent(new Event("input"));
}, words);
const focused = page => page.evaluate(() => {
    const element = document.activeElement;
    return {
        name: element.getAttribute("aria-label") ?? element.textContent,
        id: element.id,
        column: element.dataset.column,
        isOutlined: getComputedStyle(element).outlineStyle !== "none" && parseFloat(getComputedStyle(element).outlineWidth) >= 2,
    };
});
/** Presses Tab until the wanted element has the focus; on the way the focus is always seen. */
const tabTo = async (page, isWanted) => {
    for (let press = 0; press < 400; ++press) {
        await page.keyboard.press("Tab");
        const now = await focused(page);
        assert.ok(now.isOutlined, `the focus is not seen: ${JSON.stringify(now)}`);
        if (isWanted(now))
            return now;
    }
    return assert.fail("it is not reached with the keyboard");
};
const indices = page => page.$$eval("#devices tbody tr:not(.space)", rows => rows.map(row => Number(row.getAttribute("aria-rowindex"))));

test("only some rows stand in the document, and say which", async page => {
    assert.equal(await rowCount(page), rowsOfSample);
    const shown = await indices(page);
    assert.ok(shown.length > 10 && shown.length < 100);
    assert.deepEqual(shown, shown.map((unused, place) => place + 3)); // the headings are 1 and 2
});

test("scrolling shows the rows that come into view", async page => {
    await page.$eval("#devices .window", view => { view.scrollTop = view.scrollHeight; });
    await page.waitForFunction(last =>
        document.querySelector("#devices tbody tr:last-child").getAttribute("aria-rowindex") === String(last),
        {}, rowsOfSample + 2);
    const shown = await indices(page);
    assert.deepEqual(shown, shown.map((unused, place) => shown[0] + place));
});

test("sorting by a column", async page => {
    const button = await page.$(heading("plugin_last_seen_time"));
    const sorted = () => page.$eval(heading("plugin_last_seen_time"), element => element.parentElement.getAttribute("aria-sort"));
    assert.equal(await sorted(), "none");
    await button.click();
    assert.equal(await sorted(), "ascending");
    await button.click();
    assert.equal(await sorted(), "descending");
    const seen = (await column(page, "plugin_last_seen_time")).map(Number);
    assert.deepEqual(seen, [...seen].sort((one, two) => two - one));
    // Ranks are those of what is current; write-ahead logs have rows of their own.
    assert.ok(Number((await column(page, "rank_last_seen"))[0]) >= 1);
    await page.click(heading("rank_last_seen"));
    const ranks = (await column(page, "rank_last_seen")).filter(rank => rank !== "∅").map(Number);
    assert.deepEqual(ranks, [...ranks].sort((one, two) => one - two));
    assert.equal((await page.$$("#devices th[aria-sort=ascending], #devices th[aria-sort=descending]")).length, 1);
});

test("filtering as one types", async page => {
    await page.$eval("#devices .window", view => { view.scrollTop = 9000; });
    await page.type("#devices-filter", "KITCHEN sp");
    assert.match(await status(page), /^\d+ of [\d,]+ rows$/);
    const names = await column(page, "plugin_device_name");
    assert.ok(names.length > 0 && names.every(name => name.toLowerCase().includes("kitchen sp")));
    assert.equal(await rowCount(page), Number((await status(page)).split(" ")[0]));
    assert.equal((await indices(page))[0], 3);
    await setFilter(page, "there is no such row");
    assert.equal(await status(page), `0 of ${allRows}`);
    assert.equal((await page.$$("#devices tbody tr")).length, 0);
    await setFilter(page, " ");
    await page.focus("#devices-filter");
    await page.keyboard.press("Backspace");
    assert.equal(await status(page), allRows);
});

test("the keyboard alone sorts, filters, opens, copies and closes", async page => {
    await tabTo(page, now => now.name === "To the content");
    await page.keyboard.press("Enter");
    await tabTo(page, now => now.id === "devices-filter");
    await page.keyboard.type("living room");
    await tabTo(page, now => now.column === "plugin_device_name");
    assert.match(await textOf(page, "#meaning"), /Anybody can choose any name/);
    await page.keyboard.press("Space");
    assert.equal(await page.$eval("#devices th[aria-sort=ascending]", element => element.firstChild.dataset.column), "plugin_device_name");
    const row = await tabTo(page, now => /^Row [\d,]+: /.test(now.name));
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

test("the keyboard scrolls, and the focus is never lost", async page => {
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
    assert.equal((await indices(page)).at(-1), rowsOfSample + 2);
    assert.ok(await page.evaluate(() => document.activeElement.matches("#devices .window")));
    await page.keyboard.press("Home");
    await scrolledTo(0);
    assert.equal((await indices(page))[0], 3);
});

test("hostile names stay text", async page => {
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

test("every text of the evidence is isolated", async page => {
    assert.equal(await page.evaluate(() => [...document.querySelectorAll("#devices tbody td:not(:first-child)")]
        .filter(cell => cell.textContent !== "" && !cell.querySelector("bdi, .null, a[href^='#device-']")).length), 0);
    assert.deepEqual(await page.$eval("html", element => [element.lang, element.dir]), ["en", "ltr"]);
});

const pagesOf = pdf => Buffer.from(pdf).toString("latin1").match(/\/Type\s*\/Page\b/g).length;
const sizes = {A4: [210, 297], Letter: [216, 279]};

for (const format of Object.keys(sizes)) {
    test(`the edition for reading on ${format}`, async page => {
        await page.evaluate(() => window.addEventListener("beforeprint", () => {
            window.printed = [...document.querySelectorAll("#printed-devices tbody tr")].length;
            window.shown = getComputedStyle(document.querySelector("#devices")).display;
        }));
        const pages = pagesOf(await page.pdf({format, timeout: 0}));
        assert.ok(pages > 10 && pages <= 40, `${pages} pages`);
        const margins = await page.evaluate(() => [...document.styleSheets[0].cssRules]
            .filter(rule => rule instanceof CSSPageRule).map(rule => rule.cssText).join(" "));
        const manifest = createHash("sha256").update(readFileSync(join(folder, "case/manifest.json"))).digest("hex");
        for (const words of ['"Page " counter(page) " of " counter(pages)', "Case 2026-0147", `Manifest ${manifest.slice(0, 16)}`])
            assert.ok(margins.includes(words), `${words}: ${margins}`);
        assert.equal(await page.evaluate(() => window.printed), await page.$eval("#cards table", table =>
            Number(table.getAttribute("aria-rowcount")) - 2));
    });
}

/** What "Print every value" shows, for a browser that prints in its own time; nothing of it is laid out in between. */
const printEveryValue = (page, isLeft = false) => page.evaluate(left => {
    window.print = () => window.dispatchEvent(new Event("beforeprint"));
    document.getElementById("print-all").click();
    const shown = {
        rows: document.querySelectorAll("#devices tbody tr").length,
        note: document.querySelector("#devices .print-note").textContent,
    };
    if (left)
        window.dispatchEvent(new Event("afterprint"));
    return shown;
}, isLeft);

test("every value of the rows that are left is printed", async page => {
    await setFilter(page, "speaker");
    await setFilter(page, "speaker", "cards"); // they would be printed, too
    const count = await rowCount(page);
    const {rows: shown, note} = await printEveryValue(page);
    assert.ok(shown > 1 && shown < 100);
    assert.equal(shown, count);
    assert.equal(note, `Filtered by “speaker”: ${count} of ${allRows}.`);
    assert.ok(await page.$$eval("#devices tbody tr:first-child td", cells => cells.length) > 15);
    await page.emulateMediaType("print");
    assert.ok(await page.$eval("#devices .print-note", note => note.checkVisibility()));
    assert.equal(await page.$eval("#printed-devices", list => list.checkVisibility()), false);
    await page.evaluate(() => window.dispatchEvent(new Event("afterprint")));
    assert.equal(await page.$eval("#devices", section => section.checkVisibility()), false);
});

test("printing stops at 5,000 rows of a table and tells it", async page => {
    await setFilter(page, "rare", "cards");
    assert.deepEqual(await printEveryValue(page, true), {
        rows: 5000,
        note: "The first 5,000 of 5,300 rows are printed, 300 are left out: filter the table, or use the CSV files.",
    });
    assert.ok((await page.$$("#devices tbody tr")).length < 100);
}, {address: longReport});

/**
 * Words and numbers that go on in another line: none does but what is longer than a line of a cell, and a word with a hyphen
 * in it. Addresses, dates, UUIDs and hashes never.
 */
const brokenValues = page => page.evaluate(() => {
    const broken = [];
    const walker = document.createTreeWalker(document.querySelector("main"), NodeFilter.SHOW_TEXT);
    const range = document.createRange();
    for (let node = walker.nextNode(); node; node = walker.nextNode()) {
        if (!node.parentElement.checkVisibility() || node.parentElement.closest("svg, pre, .heard, .paths"))
            continue;
        for (const {0: word, index} of node.data.matchAll(/[^\s/]+/g)) {
            const isHash = /^[0-9a-f]{64}$/.test(word);
            const isWord = word.length <= 20 && !/[^\d]-[^\d]/.test(word);
            if (!isHash && !isWord && !/^[0-9A-F]{8}(-[0-9A-F]{4}){3}-/i.test(word))
                continue;
            range.setStart(node, index);
            range.setEnd(node, index + word.length);
            if (new Set([...range.getClientRects()].map(place => Math.round(place.top))).size > 1)
                broken.push(word);
        }
    }
    return broken;
});

/** How many lines of the list of all devices a sheet of A4 holds. */
const linesOfDevices = page => page.evaluate(() => {
    const rows = document.querySelectorAll("#printed-devices tbody tr");
    const height = rows[rows.length - 1].getBoundingClientRect().bottom - rows[0].getBoundingClientRect().top;
    const sheet = (297 - 34) / 25.4 * 96 - document.querySelector("#printed-devices thead").getBoundingClientRect().height;
    return Math.floor(sheet / (height / rows.length));
});

test("nothing is cut off on paper", async page => {
    await page.emulateMediaType("print");
    await page.setViewport({width: 794 - 106, height: 1123}); // A4 upright, less its margins
    for (const isWhole of [false, true]) {
        if (isWhole) {
            await setFilter(page, "1", "cards");
            await printEveryValue(page);
        } else {
            await page.evaluate(() => window.dispatchEvent(new Event("beforeprint")));
            assert.deepEqual(await brokenValues(page), []);
            assert.ok(await linesOfDevices(page) >= 40);
        }
        assert.deepEqual(await page.evaluate(() => [...document.querySelectorAll("main *")]
            .filter(part => part.checkVisibility() && part.getBoundingClientRect().right > window.innerWidth + 1)
            .map(part => part.outerHTML.slice(0, 100)).slice(0, 5)), []);
    }
    assert.ok(await page.evaluate(() => [...document.querySelectorAll("#devices tbody td")].slice(0, 200).every(cell =>
        getComputedStyle(cell, "::before").content.startsWith(`"${cell.dataset.column ?? "Row"}`))));
});

test("the search finds in every section, whatever the letter case and the separators of addresses", async page => {
    const wanted = rows.map(row => row.plugin.address).find(address => /^Public ..:/.test(address ?? ""));
    for (const words of [wanted, wanted.toLowerCase(), wanted.slice(7).replaceAll(":", ""), wanted.slice(7).replaceAll(":", "-")]) {
        await page.$eval("#search", input => { input.value = ""; });
        await page.type("#search", words);
        await page.waitForFunction(address => document.getElementById("search-results").textContent.includes(address),
                                   {timeout: 5000}, wanted.slice(7));
        const found = await page.$$eval("#search-results h2", headings => headings.map(one => one.textContent));
        assert.ok(found.some(one => one.startsWith("All devices: ")), found.join());
        assert.ok(found.some(one => one.startsWith("Devices seen")), found.join());
    }
    await page.$eval("#search", input => { input.value = ""; });
    await page.type("#search", "no such thing anywhere");
    await page.waitForFunction(() => document.getElementById("search-status").textContent === "Nothing is found.");
    assert.equal(await status(page), allRows); // the tables are not filtered
});

test("a device has a page, with an address of its own", async page => {
    await page.click("#paired tbody a");
    await page.waitForSelector("section.device");
    const number = /#device-(\d+)$/.exec(page.url())[1];
    assert.ok(await page.$eval(`#device-${number}`, section => section.checkVisibility()));
    assert.equal(await page.$eval("#findings", section => section.checkVisibility()), false);
    await page.goto(`${report}#device-3`);
    await page.waitForSelector("#device-3");
    await page.click("#device-3 .statement button");
    assert.equal(await textOf(page, "#device-3 .statement [role=status]"), "Copied.");
    assert.match(await textOf(page, "#device-3 pre"), /rowid \d+/);
    await page.click(".ways a");
    await page.waitForFunction(() => !document.querySelector("section.device"));
    assert.ok(await page.$eval("#findings", section => section.checkVisibility()));
});

test("columns are chosen, and the page's address remembers them", async page => {
    assert.deepEqual(await page.$$(heading("plugin_INT")), []);
    await page.click("#devices .chooser summary");
    await page.click("#devices .chooser input[value=plugin_INT]");
    assert.equal((await page.$$(heading("plugin_INT"))).length, 1);
    assert.match(page.url(), /devices=[\w+]*plugin_INT/);
    const address = page.url();
    await page.goto("about:blank");
    await page.goto(address);
    assert.equal((await page.$$(heading("plugin_INT"))).length, 1);
    assert.equal((await column(page, "plugin_INT"))[0], "1");
}, {others: ["about:blank"]});

test("rows are saved as CSV and JSON, those that are marked or left", async page => {
    await page.evaluate(() => {
        window.saved = [];
        URL.createObjectURL = blob => { window.saved.push(blob.text()); return "#"; };
    });
    const save = async suffix => {
        await page.$$eval("#devices .tools button", (buttons, wanted) =>
            buttons.find(one => one.textContent === `Save as ${wanted}`).click(), suffix);
        return page.evaluate(() => window.saved.at(-1));
    };
    await setFilter(page, "=cmd|");
    const count = await rowCount(page);
    const lines = (await save("CSV")).split("\r\n");
    assert.equal(lines.length, count + 2); // the headings, and behind the last line end
    assert.ok(lines[1].includes(",'=cmd|'/C calc'!A0,"), lines[1]);
    await page.click("#devices tbody input[type=checkbox]");
    const marked = JSON.parse(await save("JSON"));
    assert.deepEqual(marked.map(row => row.plugin_device_name), ["=cmd|'/C calc'!A0"]);
    assert.match(await status(page), /, 1 marked$/);
});

const sections = ["findings", "more-than-one-source", "paired", "named", "timeline", "cards", "devices", "paired-devices",
                  "wal-changes", "host-devices", "evidence", "provenance", "terms", "limitations"];
const sectionsOf = page => page.$$eval("main > section", found => found.map(section => section.id));
test("the sections with script", async page => {
    assert.deepEqual(await sectionsOf(page), sections);
    assert.match(await textOf(page, "#findings .with-script"), /not with the browser's/);
    assert.ok(await page.$eval("#findings .with-script", note => note.checkVisibility()));
});

test("without script", async page => {
    assert.deepEqual(await sectionsOf(page), sections);
    assert.equal((await page.$$("#devices tbody tr")).length, 200);
    assert.equal(await textOf(page, "#devices .without-script"), `Without script these are the first 200 of ${rowsOfSample} rows.`);
    assert.ok(await page.$eval("#devices .without-script", note => note.checkVisibility()));
    assert.ok(await page.$eval("noscript .alarm", note => note.checkVisibility()));
    assert.equal(await page.$eval("#devices .tools", tools => tools.checkVisibility()), false);
    assert.ok(await page.$eval("#cards tr[id^=device-]", row => row.checkVisibility()));
}, {script: false});

test("axe, dark", async page => assert.deepEqual(await violations(page), []), {scheme: "dark"});
test("axe, print", async page => {
    await page.emulateMediaType("print");
    assert.deepEqual(await violations(page), []);
});
test("axe, a device's page, on paper too", async page => {
    await page.goto(`${report}#device-3`);
    await page.waitForSelector("#device-3");
    assert.deepEqual(await violations(page), []);
    await page.emulateMediaType("print");
    assert.deepEqual(await violations(page), []);
});
test("axe, light, columns being chosen and a search", async page => {
    await page.click("#devices .chooser summary");
    await page.type("#search", "speaker");
    await page.waitForSelector("#search-results h2");
    assert.deepEqual(await violations(page), []);
});
test("axe, devices in more than one source", async page => {
    assert.deepEqual(await violations(page, "#more-than-one-source"), []);
    assert.match(await textOf(page, "#more-than-one-source table"), /paired in both/);
}, {address: sharedReport});
test("nothing is told by colour alone", async page => {
    const before = selector => page.$eval(selector, element => getComputedStyle(element, "::before").content);
    assert.match(await textOf(page, ".state"), /each read to its end; nothing changed/);
    assert.match(await before(".state"), /\u2713/);
    // Paired, seen and in a list alone are three forms.
    const marks = await page.$eval("#more-than-one-source svg", picture => ["rect", "circle", "line.ring"]
        .map(mark => picture.querySelectorAll(mark).length > 0));
    assert.deepEqual(marks, [true, true, true]);
    assert.match(await textOf(page, "#more-than-one-source figcaption"), /Square: paired or in use; ring: seen; cross: in a list alone/);
}, {address: sharedReport});
test("flags and notes are words", async page => {
    assert.equal(await textOf(page, "#flagged .flag"), "flagged");
    assert.match(await page.$eval("#flagged .flag", flag => getComputedStyle(flag, "::before").content), /\u2691/);
    assert.deepEqual(await violations(page, "#flagged"), []);
}, {address: manyReport});
test("a search without the separators of an address finds it", async page => {
    await page.type("input#search", "b4c26a7fd37a");
    await page.waitForFunction(() => document.getElementById("search-status").textContent !== "");
    const found = await textOf(page, "#search-results");
    for (const section of ["Paired or in use", "All devices", "Devices paired or in use"])
        assert.ok(found.includes(section), found);
    assert.ok(found.includes(noted), found);
}, {address: manyReport});
for (const place of ["shared/Report", "manycase/Report", "split"]) {
    const brief = {address: addressOf(`${place}/brief.html`)};
    test(`axe, in brief, ${place}`, async page => {
        assert.deepEqual(await violations(page), []);
        assert.deepEqual(await page.$$("script"), []);
        const hash = createHash("sha256").update(readFileSync(join(folder, place, "report.html"))).digest("hex");
        assert.ok((await textOf(page, "#findings")).includes(`report.html, SHA-256 ${hash}`));
        for (const part of ["findings", "more-than-one-source", "paired", "timeline", "evidence", "terms", "limitations", "signatures"])
            assert.ok(await page.$(`#${part}`), part);
    }, brief);
    for (const format of Object.keys(sizes)) {
        test(`the brief report has at most ten pages on ${format}, ${place}`, async page => {
            const pages = pagesOf(await page.pdf({format, timeout: 0}));
            assert.ok(pages > 1 && pages <= 10, `${pages} pages`);
        }, brief);
    }
}
test("the brief report holds so many devices and says how many more", async page => {
    for (const part of ["flagged", "more-than-one-source", "paired"]) {
        assert.equal((await page.$$(`#${part} .scroller:first-of-type tbody tr`)).length >= 50, true, part);
        assert.match(await textOf(page, `#${part}`), /And 1\d more\./, part);
    }
    assert.match(await textOf(page, "#flagged"), /flagged/);
    assert.match(await textOf(page, "#evidence"), /And 10 more sources\./);
}, {address: addressOf("manycase/Report/brief.html")});
test("axe, a row opened", async page => {
    await page.click("#devices tbody button");
    assert.deepEqual(await violations(page, "#row"), []);
});
for (const name of ["report", "report-source1", "report-source2"]) {
    test(`axe, ${name} of a split report`, async page => assert.deepEqual(await violations(page), []),
               {address: addressOf(`split/${name}.html`)});
}
test("the pages of a split report lead to each other", async page => {
    const index = page.url();
    await page.click("a[href='report-source2.html']");
    await page.waitForSelector("#devices [role=status]:not(:empty)");
    assert.equal(await status(page), "50 rows");
    await page.click("a[href='report.html']");
    await page.waitForFunction(address => document.URL.split("#")[0] === address, {}, index);
}, {address: addressOf("split/report.html"), others: [addressOf("split/report-source2.html")]});
// 1280 pixels at 200 % and at 400 %
for (const [width, scheme] of [[640, "light"], [320, "dark"]]) {
    test(`axe and no sideways scrolling, ${width} pixels`, async page => {
        await page.setViewport({width, height: 450, deviceScaleFactor: 1280 / width});
        assert.deepEqual(await violations(page), []);
        assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth));
        await setFilter(page, "kitchen");
        assert.ok((await column(page, "plugin_device_name")).length > 0);
        await page.click("#devices tbody button");
        assert.ok(await page.$eval("#row", dialog => dialog.scrollWidth <= dialog.clientWidth));
    }, {scheme});
}

await Promise.all([runTests(browser), runTests((await startBrowser(modules)).browser)]);
rmSync(folder, {recursive: true});
process.exit(failures > 0 ? 1 : 0);
