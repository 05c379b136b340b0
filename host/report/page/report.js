// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
"use strict";

// Tables of any length: only the rows that are seen stand in the document. Every text of the evidence is put there with
// textContent, never as markup.

const mostPrintedRows = 5000;
const rowsBeyondView = 10;
const data = JSON.parse(document.getElementById("data").textContent);
const numbers = new Intl.NumberFormat("en");

function element(name, text, className) {
    const made = document.createElement(name);
    if (text !== undefined)
        made.textContent = text;
    if (className)
        made.className = className;
    return made;
}

function evidenceText(value) {
    return value === null ? element("span", "∅", "null") : element("bdi", String(value));
}

function compareCells(one, two) {
    if (one === two)
        return 0;
    if (one === null || two === null)
        return one === null ? -1 : 1;
    if (typeof one === "number" && typeof two === "number")
        return one - two;
    if (typeof one !== typeof two)
        return typeof one === "number" ? -1 : 1;
    return one < two ? -1 : 1;
}

/** The data hold [] where a value is that of the row above. */
function restoreRepeated(rows) {
    for (let index = 1; index < rows.length; ++index) {
        const above = rows[index - 1];
        const row = rows[index];
        for (let column = 0; column < row.length; ++column) {
            if (Array.isArray(row[column]))
                row[column] = above[column];
        }
    }
    return rows;
}

class RowTable {
    constructor(section, content) {
        this.columns = content.columns;
        this.rows = restoreRepeated(content.rows);
        this.table = section.querySelector("table");
        this.body = section.querySelector("tbody");
        this.view = section.querySelector(".window");
        this.input = section.querySelector("input");
        this.status = section.querySelector("[role=status]");
        this.printNote = section.querySelector(".print-only");
        this.order = this.rows.map((row, index) => index);
        this.sortColumn = -1;
        this.isDescending = false;
        this.texts = null;
        this.first = -1;
        this.input.addEventListener("focus", () => this.prepareFilter());
        this.input.addEventListener("input", () => this.filter());
        this.view.addEventListener("scroll", () => this.show());
        section.querySelectorAll("th button").forEach((button, column) =>
            button.addEventListener("click", () => this.sort(column)));
        this.body.replaceChildren(this.rowElement(0, 0));
        this.view.classList.add("ready");
        this.measure();
        this.update();
    }

    /** Rows are alike in height, which is another one where a reader has enlarged the text. */
    measure() {
        const row = this.body.querySelector("tr:not(.space)");
        if (row)
            this.rowHeight = row.getBoundingClientRect().height;
        this.first = -1;
    }

    matches(index) {
        return this.texts[index].includes(this.words);
    }

    /** Before the first letter is typed. */
    prepareFilter() {
        if (this.texts === null)
            this.texts = this.rows.map(row => row.join("\n").toLowerCase());
    }

    filter() {
        this.words = this.input.value.toLowerCase();
        this.prepareFilter();
        this.update();
    }

    sort(column) {
        this.isDescending = this.sortColumn === column && !this.isDescending;
        this.sortColumn = column;
        const sign = this.isDescending ? -1 : 1;
        const rows = this.rows;
        this.order.sort((one, two) => sign * compareCells(rows[one][column], rows[two][column]) || one - two);
        this.table.querySelectorAll("thead th[aria-sort]").forEach((heading, index) =>
            heading.setAttribute("aria-sort", index !== column ? "none" : this.isDescending ? "descending" : "ascending"));
        this.update();
    }

    update() {
        this.shown = this.words ? this.order.filter(index => this.matches(index)) : this.order;
        this.table.setAttribute("aria-rowcount", this.shown.length + 1);
        this.status.textContent = this.words
            ? `${numbers.format(this.shown.length)} of ${numbers.format(this.rows.length)} rows`
            : `${numbers.format(this.rows.length)} rows`;
        this.view.scrollTop = 0;
        this.first = -1;
        this.show();
    }

    /** Puts the rows into the document that are in view, with some on both sides. */
    show() {
        const seen = Math.ceil(this.view.clientHeight / this.rowHeight);
        const first = Math.max(0, Math.floor(this.view.scrollTop / this.rowHeight) - rowsBeyondView);
        if (first === this.first)
            return;
        const focused = this.body.contains(document.activeElement) ? document.activeElement.dataset.row : undefined;
        this.first = first;
        const last = Math.min(this.shown.length, first + seen + 2 * rowsBeyondView);
        this.fill(first, last);
        if (focused !== undefined) {
            const again = this.body.querySelector(`button[data-row="${focused}"]`);
            (again ?? this.view).focus({preventScroll: true});
        }
    }

    fill(first, last) {
        const parts = [this.space(first)];
        for (let place = first; place < last; ++place)
            parts.push(this.rowElement(this.shown[place], place));
        parts.push(this.space(this.shown.length - last));
        this.body.replaceChildren(...parts.filter(part => part !== null));
    }

    space(count) {
        if (count <= 0)
            return null;
        const row = element("tr", undefined, "space");
        const cell = element("td");
        row.setAttribute("aria-hidden", "true");
        cell.colSpan = this.columns.length + 1;
        cell.style.height = `${count * this.rowHeight}px`;
        row.append(cell);
        return row;
    }

    rowElement(index, place) {
        const row = element("tr");
        row.setAttribute("aria-rowindex", place + 2);
        const button = element("button", String(index + 1));
        button.type = "button";
        button.dataset.row = index;
        button.setAttribute("aria-label", `Row ${index + 1}: all values`);
        button.addEventListener("click", () => this.open(index));
        const opener = element("td");
        opener.append(button);
        row.append(opener);
        this.rows[index].forEach((value, column) => {
            const cell = element("td", undefined, typeof value === "number" ? "number" : undefined);
            cell.dataset.column = this.columns[column]; // for print
            cell.append(evidenceText(value));
            row.append(cell);
        });
        return row;
    }

    open(index) {
        const dialog = document.getElementById("row");
        const list = dialog.querySelector("dl");
        dialog.querySelector("h2").textContent = `Row ${index + 1}`;
        list.replaceChildren();
        this.columns.forEach((name, column) => {
            const value = element("dd");
            value.append(evidenceText(this.rows[index][column]));
            list.append(element("dt", name), value);
        });
        dialog.querySelector("[role=status]").textContent = "";
        dialog.querySelector(".copy").onclick = () => copyRow(dialog, this.columns, this.rows[index]);
        dialog.showModal();
    }

    beforePrint() {
        const count = Math.min(this.shown.length, mostPrintedRows);
        const left = this.shown.length - count;
        const notes = [];
        if (this.words)
            notes.push(`Filtered by “${this.input.value}”: ${this.status.textContent}.`);
        if (left > 0)
            notes.push(`The first ${numbers.format(count)} of ${numbers.format(this.shown.length)} rows are printed, ` +
                       `${numbers.format(left)} are left out: filter the table, or use the CSV files.`);
        this.printNote.textContent = notes.join(" ");
        this.fill(0, count);
        if (left > 0)
            this.body.lastElementChild.remove(); // the space for what is left out
    }

    afterPrint() {
        this.first = -1;
        this.show();
    }
}

function copyRow(dialog, columns, row) {
    const text = columns.map((name, column) => `${name}\t${row[column] === null ? "" : row[column]}`).join("\n");
    const area = element("textarea", text);
    dialog.append(area);
    area.select();
    const done = document.execCommand("copy"); // the clipboard interface is closed to pages of files
    area.remove();
    dialog.querySelector("[role=status]").textContent = done ? "Copied." : "The browser does not allow copying.";
    dialog.querySelector(".copy").focus();
}

const tables = [];
try {
    for (const content of data.tables) {
        if (content.rows.length > 0)
            tables.push(new RowTable(document.getElementById(content.id), content));
    }
} finally {
    document.querySelectorAll(".window").forEach(view => view.classList.add("ready"));
}
document.querySelector("#row .close").addEventListener("click", () => document.getElementById("row").close());
document.querySelectorAll(".with-script").forEach(part => { part.hidden = false; });
document.querySelectorAll(".without-script").forEach(part => { part.hidden = true; });
window.addEventListener("beforeprint", () => tables.forEach(table => table.beforePrint()));
window.addEventListener("afterprint", () => tables.forEach(table => table.afterPrint()));
window.addEventListener("resize", () => tables.forEach(table => {
    table.measure();
    table.show();
}));
