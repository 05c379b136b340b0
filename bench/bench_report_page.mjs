// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
//
// node bench_report_page.mjs MODULES PAGE: how long a report's page takes to open, to filter and to sort.

import {pathToFileURL} from "node:url";

import {startBrowser} from "../tests/host/report/browser/browser.mjs";

const rounds = 5;
const [modules, file] = process.argv.slice(2);
const {browser} = await startBrowser(modules);

const median = numbers => [...numbers].sort((one, two) => one - two)[Math.floor(numbers.length / 2)];
const tell = (name, times) => console.log(`${name}: median ${median(times).toFixed(0)} ms (` +
    `${Math.min(...times).toFixed(0)} to ${Math.max(...times).toFixed(0)})`);

const opened = [];
const focused = [];
const filtered = [];
const sorted = [];
for (let round = 0; round < rounds; ++round) {
    const page = await browser.newPage();
    await page.setViewport({width: 1280, height: 900});
    await page.goto(pathToFileURL(file).href);
    // Until the browser is ready for the next picture, all of it laid out.
    const times = await page.evaluate(async () => {
        const painted = () => new Promise(resolve => requestAnimationFrame(() => setTimeout(resolve)));
        const input = document.querySelector("#devices-filter");
        const timed = async work => {
            const start = performance.now();
            work();
            await painted();
            return performance.now() - start;
        };
        await painted();
        const focus = await timed(() => input.focus());
        const typed = [];
        for (const words of ["k", "ki", "kit", "kitchen", "3:", "no such row", ""])
            typed.push(await timed(() => {
                input.value = words;
                input.dispatchEvent(new Event("input"));
            }));
        const column = document.querySelector("#devices th button[data-column=plugin_address]");
        return {
            opened: performance.getEntriesByType("navigation")[0].loadEventEnd,
            focus,
            typed,
            sorted: await timed(() => column.click()),
        };
    });
    opened.push(times.opened);
    focused.push(times.focus);
    filtered.push(...times.typed);
    sorted.push(times.sorted);
    await page.close();
}
tell("to open", opened);
tell("to focus the filter", focused);
tell("to filter", filtered);
tell("to sort", sorted);
await browser.close();
