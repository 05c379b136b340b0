// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// One search over all tables and sections. It filters nothing: hits are listed by section.

const mostHitsShown = 5;
const pauseBeforeSearch = 120; // milliseconds without a letter

class PageSearch {
    constructor(tables) {
        this.tables = tables;
        this.input = document.getElementById("search");
        this.results = document.getElementById("search-results");
        this.status = document.getElementById("search-status");
        this.input.addEventListener("focus", () => this.tables.forEach(table => table.prepareSearch()));
        this.input.addEventListener("input", () => {
            clearTimeout(this.timer);
            this.timer = setTimeout(() => this.search(), pauseBeforeSearch);
        });
        this.input.addEventListener("keydown", event => {
            if (event.key === "Escape") {
                this.input.value = "";
                this.search();
            }
        });
    }

    search() {
        const text = this.input.value.trim();
        this.results.replaceChildren();
        this.results.hidden = text === "";
        if (text === "") {
            this.status.textContent = "";
            return;
        }
        const words = new SearchWords(text);
        let count = 0;
        for (const section of document.querySelectorAll("#content > section[id]:not(.device)")) {
            const data = this.tables.get(section.id);
            const hits = data ? this.hitsInTable(data, words) : this.hitsInText(section, words);
            count += hits.count;
            if (hits.count > 0)
                this.results.append(this.resultsOf(section, hits));
        }
        this.status.textContent = count === 0 ? "Nothing is found." : counted(count, "hit", "hits");
    }

    hitsInTable(data, words) {
        const found = data.search(words);
        const rows = [];
        let count = 0;
        for (let row = 0; row < data.count; ++row) {
            if (found[row] && ++count <= mostHitsShown)
                rows.push(row);
        }
        return {count, entries: rows.map(row => this.entryOfRow(data, row, words))};
    }

    entryOfRow(data, row, words) {
        const device = data.value("device", row);
        const entry = element("li");
        entry.append(device === null ? `Row ${numbers.format(row + 1)}` : linkTo(`device-${device}`, `Device ${device}`), ": ");
        const shown = data.columns.filter(column => column.as === undefined && column.value(row) !== null);
        const hits = shown.filter(column => words.isIn(column.value(row)));
        const name = shown.find(column => column.name.endsWith("device_name") && !hits.includes(column));
        for (const column of [name, ...hits.slice(0, 3)].filter(Boolean)) {
            const value = column.value(row);
            entry.append(element("span", `${column.heading} `, "quiet"),
                         evidenceText(value.length > 200 ? `${value.slice(0, 200)}…` : value), " ");
        }
        return entry;
    }

    hitsInText(section, words) {
        const parts = [...section.querySelectorAll("tbody tr, li, dd, p")]
            .filter(part => !part.querySelector("tbody tr, li, dd, p") && words.isIn(part.textContent));
        return {count: parts.length, entries: parts.slice(0, mostHitsShown).map(part => {
            const text = [...(part.cells ?? [part])].map(cell => cell.textContent).join(" · ");
            return element("li", text.length > 300 ? `${text.slice(0, 300)}…` : text);
        })};
    }

    resultsOf(section, hits) {
        const part = element("div");
        const heading = element("h2");
        heading.append(linkTo(section.id, section.querySelector("h2").textContent), `: ${counted(hits.count, "hit", "hits")}`);
        const list = element("ul");
        list.append(...hits.entries);
        if (hits.count > hits.entries.length)
            list.append(element("li", `and ${numbers.format(hits.count - hits.entries.length)} more`, "quiet"));
        part.append(heading, list);
        return part;
    }
}
