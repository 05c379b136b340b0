// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Tables of any length: only the rows that are seen stand in the document.

const mostPrintedRows = 5000;
const rowsBeyondView = 10;

class RowTable {
    constructor(section, data) {
        this.data = data;
        this.section = section;
        this.table = section.querySelector("table");
        this.head = section.querySelector("thead");
        this.body = section.querySelector("tbody");
        this.view = section.querySelector(".window");
        this.input = section.querySelector("input[type=search]");
        this.status = section.querySelector("[role=status]");
        this.printNote = section.querySelector(".print-note");
        this.order = Uint32Array.from({length: data.count}, (unused, row) => row);
        this.sortColumn = null;
        this.isDescending = false;
        this.words = null;
        this.marked = new Set();
        this.first = -1;
        this.current = undefined; // the row that the tabulator reaches; the arrow keys go on from there
        this.chosen = rememberedColumns(data.id);
        this.input.addEventListener("focus", () => data.prepareSearch());
        this.input.addEventListener("input", () => this.filter());
        this.view.addEventListener("scroll", () => this.show(), {passive: true});
        this.body.addEventListener("focusin", event => this.setCurrent(event.target.dataset.row));
        this.body.addEventListener("keydown", event => this.step(event));
        this.makeTools();
        this.makeHead();
        this.body.replaceChildren(this.rowElement(0, 0));
        this.view.classList.add("ready");
        this.measure();
        this.update();
    }

    get columns() {
        const isWanted = this.chosen ? column => this.chosen.includes(column.name) : column => !column.hidden;
        return this.isPrintedWhole ? this.data.columns : this.data.columns.filter(isWanted);
    }

    /** Rows are alike in height, which is another one where a reader has enlarged the text. */
    measure() {
        const row = this.body.querySelector("tr:not(.space)");
        if (row)
            this.rowHeight = row.getBoundingClientRect().height || this.rowHeight;
        this.first = -1;
    }

    makeTools() {
        const tools = this.section.querySelector(".tools");
        tools.append(this.columnChooser());
        for (const suffix of Object.keys(exportForms))
            tools.append(button(`Save as ${suffix.toUpperCase()}`, () => saveRows(this.data, this.exportedRows(), suffix)));
        this.unmark = button("Unmark all", () => {
            this.marked.clear();
            this.update();
            this.input.focus();
        });
        this.unmark.hidden = true;
        tools.append(this.unmark);
    }

    /** The marked rows, else those that the filter leaves; in the order of the table. */
    exportedRows() {
        return this.marked.size > 0 ? [...this.order].filter(row => this.marked.has(row)) : [...this.shown];
    }

    columnChooser() {
        const chooser = element("details", undefined, "chooser");
        chooser.append(element("summary", "Columns"));
        const panel = element("div", undefined, "panel");
        const boxes = [];
        for (const group of new Set(this.data.columns.map(column => column.group))) {
            const set = element("fieldset");
            set.append(element("legend", group));
            for (const column of this.data.columns.filter(one => one.group === group)) {
                const box = element("input");
                box.type = "checkbox";
                box.value = column.name;
                box.checked = this.columns.includes(column);
                box.addEventListener("change", () => this.choose(boxes.filter(one => one.checked).map(one => one.value)));
                const label = element("label");
                label.append(box, ` ${column.heading} `, element("small", column.name));
                set.append(label);
                boxes.push(box);
            }
            panel.append(set);
        }
        panel.append(button("As before", () => {
            this.choose(null);
            boxes.forEach(box => { box.checked = this.columns.some(column => column.name === box.value); });
        }));
        chooser.append(panel);
        chooser.addEventListener("keydown", event => {
            if (event.key === "Escape") {
                chooser.open = false;
                chooser.querySelector("summary").focus();
            }
        });
        return chooser;
    }

    choose(names) {
        this.chosen = names ?? undefined;
        rememberColumns(this.data.id, names);
        this.makeHead();
        this.measure();
        this.show();
    }

    makeHead() {
        const columns = this.columns;
        const groups = element("tr");
        groups.append(element("td", undefined, "corner"));
        for (let place = 0; place < columns.length;) {
            const last = columns.findIndex((column, other) => other > place && column.group !== columns[place].group);
            const end = last < 0 ? columns.length : last;
            const group = element("th", columns[place].group, "group");
            group.scope = "colgroup";
            group.colSpan = end - place;
            groups.append(group);
            place = end;
        }
        const names = element("tr");
        groups.setAttribute("aria-rowindex", 1);
        names.setAttribute("aria-rowindex", 2);
        const corner = element("th", this.data.opens ? "Device" : "Row");
        corner.scope = "col";
        names.append(corner, ...columns.map(column => this.heading(column)));
        this.head.replaceChildren(groups, names);
    }

    heading(column) {
        const heading = element("th");
        heading.scope = "col";
        heading.setAttribute("aria-sort", column !== this.sortColumn ? "none" : this.isDescending ? "descending" : "ascending");
        const sorter = button(column.heading, () => this.sort(column));
        sorter.dataset.column = column.name;
        tellMeaning(sorter, column.meaning);
        heading.append(sorter);
        if (column.heading !== column.name)
            heading.append(element("small", column.name));
        return heading;
    }

    filter() {
        this.words = this.input.value === "" ? null : new SearchWords(this.input.value);
        this.update();
    }

    sort(column) {
        this.isDescending = this.sortColumn === column && !this.isDescending;
        this.sortColumn = column;
        const sign = this.isDescending ? -1 : 1;
        const rank = column.ranks;
        const keys = Float64Array.from({length: this.data.count}, (unused, row) => sign * rank(row));
        this.order.sort((one, two) => keys[one] - keys[two] || one - two);
        for (const heading of this.head.querySelectorAll("th[aria-sort]"))
            heading.setAttribute("aria-sort", heading.firstChild.dataset.column !== column.name ? "none"
                : this.isDescending ? "descending" : "ascending");
        this.update();
    }

    update() {
        const found = this.words && this.data.search(this.words);
        this.shown = found ? this.order.filter(row => found[row]) : this.order;
        this.table.setAttribute("aria-rowcount", this.shown.length + 2);
        this.tellCount();
        this.view.scrollTop = 0;
        this.first = -1;
        this.show();
    }

    tellCount() {
        const all = numbers.format(this.data.count);
        const left = this.words ? `${numbers.format(this.shown.length)} of ${all} rows` : `${all} rows`;
        this.status.textContent = this.marked.size > 0 ? `${left}, ${numbers.format(this.marked.size)} marked` : left;
        this.unmark.hidden = this.marked.size === 0;
    }

    /** Puts the rows into the document that are in view, with some on both sides. */
    show() {
        const seen = Math.ceil(this.view.clientHeight / this.rowHeight);
        const first = Math.max(0, Math.floor(this.view.scrollTop / this.rowHeight) - rowsBeyondView);
        if (first === this.first)
            return;
        const active = this.body.contains(document.activeElement) ? document.activeElement : null;
        this.first = first;
        const last = Math.min(this.shown.length, first + seen + 2 * rowsBeyondView);
        this.fill(first, last);
        if (active)
            (this.control(active.localName, active.dataset.row) ?? this.view).focus({preventScroll: true});
    }

    control(name, row) {
        return this.body.querySelector(`${name}[data-row="${row}"]`);
    }

    /** One row's controls are reached with the tabulator: nobody has to go through all rows to what follows. */
    setCurrent(row) {
        this.current = row;
        const reached = this.body.querySelector(`[data-row="${row}"]`) ? row : this.body.querySelector("[data-row]")?.dataset.row;
        for (const control of this.body.querySelectorAll("[data-row]"))
            control.tabIndex = control.dataset.row === reached ? 0 : -1;
    }

    step(event) {
        const step = {ArrowDown: 1, ArrowUp: -1}[event.key];
        const from = event.target.closest("tr");
        if (!step || event.target.dataset.row === undefined)
            return;
        event.preventDefault();
        const next = step > 0 ? from.nextElementSibling : from.previousElementSibling;
        const control = next?.querySelector(`${event.target.localName}[data-row]`);
        control?.focus();
        control?.scrollIntoView({block: "nearest"});
    }

    fill(first, last) {
        const parts = [this.space(first)];
        for (let place = first; place < last; ++place)
            parts.push(this.rowElement(this.shown[place], place));
        parts.push(this.space(this.shown.length - last));
        this.body.replaceChildren(...parts.filter(part => part !== null));
        this.setCurrent(this.current);
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

    rowElement(row, place) {
        const made = element("tr");
        made.setAttribute("aria-rowindex", place + 3);
        made.append(this.firstCell(row));
        for (const column of this.columns) {
            const value = column.value(row);
            const cell = element("td", undefined, column.number ? "number" : undefined);
            cell.dataset.column = column.heading; // for print
            cell.append(column.link && value !== null ? this.linkOf(column, value, row) : evidenceText(value));
            made.append(cell);
        }
        return made;
    }

    linkOf(column, value, row) {
        const link = linkTo(`${column.link}-${value}`, value);
        link.setAttribute("aria-label", `${column.heading} ${value}: its page`);
        link.dataset.row = row;
        return link;
    }

    firstCell(row) {
        const cell = element("td", undefined, "opener");
        const opener = this.opener(row);
        opener.dataset.row = row;
        const mark = element("input");
        mark.type = "checkbox";
        mark.checked = this.marked.has(row);
        mark.dataset.row = row;
        mark.setAttribute("aria-label", `Mark row ${row + 1}`);
        mark.addEventListener("change", () => {
            if (mark.checked)
                this.marked.add(row);
            else
                this.marked.delete(row);
            this.tellCount();
        });
        cell.append(mark, opener);
        return cell;
    }

    opener(row) {
        if (!this.data.opens)
            return button(numbers.format(row + 1), () => openRow(this.data, row), `Row ${numbers.format(row + 1)}: all values`);
        const number = this.data.value(this.data.opens, row);
        const link = linkTo(`device-${number}`, number);
        link.setAttribute("aria-label", `Device ${number}: its page`);
        return link;
    }

    beforePrint(isWhole) {
        if (!isWhole)
            return;
        const count = Math.min(this.shown.length, mostPrintedRows);
        const left = this.shown.length - count;
        const notes = [];
        if (this.words)
            notes.push(`Filtered by “${this.input.value}”: ${this.status.textContent}.`);
        if (left > 0)
            notes.push(`The first ${numbers.format(count)} of ${numbers.format(this.shown.length)} rows are printed, ` +
                       `${numbers.format(left)} are left out: filter the table, or use the CSV files.`);
        this.printNote.textContent = notes.join(" ");
        this.isPrintedWhole = true;
        this.makeHead();
        this.fill(0, count);
        if (left > 0)
            this.body.lastElementChild.remove(); // the space for what is left out
    }

    afterPrint() {
        if (this.isPrintedWhole) {
            this.isPrintedWhole = false;
            this.makeHead();
        }
        this.first = -1;
        this.show();
    }
}
