// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// The page of a device: what its card says, and what each source knows of it. It stands in place of all other sections
// while the page's address ends in #device-<number>.

const mostShownRows = 200;
const rowTableIds = ["devices", "paired-devices", "wal-changes", "host-devices"];

class DevicePage {
    constructor(tables) {
        this.cards = tables.get("cards");
        this.tables = rowTableIds.map(id => tables.get(id)).filter(Boolean);
        this.main = document.getElementById("content");
        this.section = null;
    }

    /** Whether the address is that of a device's page, which is shown then. */
    follow(id) {
        const number = /^device-(\d+)$/.exec(id)?.[1];
        const row = number === undefined ? undefined : this.cards?.rowsWith("device", number)[0];
        this.section?.remove();
        this.section = null;
        document.body.classList.toggle("device-open", row !== undefined);
        if (row === undefined)
            return false;
        this.section = this.make(number, row);
        this.main.prepend(this.section);
        window.scrollTo(0, 0);
        this.section.querySelector("h2").focus({preventScroll: true});
        return true;
    }

    make(number, row) {
        const section = element("section");
        section.id = `device-${number}`;
        section.className = "device";
        const name = (this.cards.value("device_name", row) ?? this.cards.value("host_preferences_name", row))?.split(" | ")[0];
        const heading = element("h2", `Device ${number}: `);
        heading.id = "device-heading";
        heading.tabIndex = -1;
        heading.append(name ? evidenceText(name) : "no name known");
        section.setAttribute("aria-labelledby", heading.id);
        const rows = this.rowsOf(number);
        const sources = this.sources(rows);
        section.append(this.ways(number, row), heading, this.facts(row), this.sourceTable(sources),
                       ...rows.filter(part => part.rows.length > 0).map(part => this.rowTable(part)),
                       this.statement(number, row, sources));
        return section;
    }

    ways(number, row) {
        const ways = element("nav", undefined, "ways");
        ways.setAttribute("aria-label", "Devices");
        ways.append(linkTo("cards", "All devices"));
        for (const [step, text] of [[-1, "Device before"], [1, "Next device"]]) {
            if (row + step >= 0 && row + step < this.cards.count)
                ways.append(linkTo(`device-${this.cards.value("device", row + step)}`, text));
        }
        return ways;
    }

    facts(row) {
        const list = element("dl");
        for (const column of this.cards.columns) {
            const value = column.value(row);
            if (value === null || column.name === "device")
                continue;
            const fact = element("dd");
            for (const text of column.number ? [value] : value.split(" | "))
                fact.append(evidenceText(text), element("br"));
            fact.lastChild.remove();
            list.append(element("dt", column.heading), fact);
        }
        return list;
    }

    rowsOf(number) {
        return this.tables.map(data => ({data, rows: data.rowsWith("device", number)}));
    }

    /** What each source knows, by its number. */
    sources(parts) {
        const sources = new Map();
        for (const {data, rows} of parts) {
            for (const row of rows) {
                const number = data.value("source", row);
                if (!sources.has(number))
                    sources.set(number, new SourceKnowledge(data.value("source_name", row)));
                sources.get(number).learn(data, row);
            }
        }
        return sources;
    }

    sourceTable(sources) {
        const headings = ["Source", "Paired or in use", "Last connection, counter", "Seen", "In the write-ahead log", "In the lists",
                          "Sightings", "First", "Last", "Places"];
        const rows = [...sources].map(([number, source]) => [`${number} ${source.name ?? ""}`, ...source.texts()]);
        const told = headings.map((unused, place) => place === 0 || rows.some(row => row[place] !== ""));
        return plainTable("What each source knows", headings.filter((unused, place) => told[place]),
                          rows.map(row => row.filter((unused, place) => told[place])));
    }

    rowTable({data, rows}) {
        const isTold = column => !column.hidden && column.name !== "device" && rows.some(row => column.value(row) !== null);
        const columns = data.columns.filter(isTold);
        const title = document.getElementById(`${data.id}-heading`).textContent;
        const more = rows.length > mostShownRows ? `; the first ${mostShownRows} are shown` : "";
        return plainTable(`${title}: ${counted(rows.length, "row", "rows")}${more}`, columns.map(column => column.heading),
                          rows.slice(0, mostShownRows).map(row => columns.map(column => column.value(row))));
    }

    statement(number, row, sources) {
        const part = element("div", undefined, "statement");
        const status = element("span");
        status.setAttribute("role", "status");
        const text = this.statementText(number, row, sources);
        const copier = button("Copy for a statement", () => {
            copyText(text, part, status);
            copier.focus();
        });
        part.append(copier, " ", status, element("pre", text));
        return part;
    }

    statementText(number, row, sources) {
        const lines = [`Device ${number} of the report of the case ${document.body.dataset.case}`];
        if (document.body.dataset.manifest)
            lines.push(`SHA-256 of the case's manifest: ${document.body.dataset.manifest}`);
        for (const column of this.cards.columns) {
            const value = column.value(row);
            if (value !== null && !["device", "note", "flag"].includes(column.name)) // an examiner's words are no evidence
                lines.push(`${column.heading}: ${value}`);
        }
        for (const [source, {name, places}] of sources)
            lines.push(`Source ${source} (${name}): ${shortList(places, 10)}`);
        return lines.join("\n");
    }
}

/** What one source knows of a device. */
class SourceKnowledge {
    constructor(name) {
        this.name = name;
        this.paired = new Set();
        this.connections = new Set();
        this.counters = new Set();
        this.logChanges = new Set();
        this.lists = new Set();
        this.dates = [];
        this.seen = 0;
        this.places = [];
    }

    learn(data, row) {
        const value = name => data.value(name, row);
        this.places.push(placeText(data, row));
        if (data.id === "host-devices") {
            this.lists.add(value("list"));
            if (value("is_paired") === "true")
                this.paired.add(`by ${value("list")}`);
            return;
        }
        if (data.id === "wal-changes") {
            if (value("change") === "added")
                this.logChanges.add("only in the log");
            return;
        }
        const date = value("plugin_date");
        if (data.id === "paired-devices")
            this.paired.add(date === null ? "paired" : "\"active device\" notice");
        else
            ++this.seen;
        if (date !== null)
            this.dates.push(date);
        if (value("host_wal") !== null)
            this.logChanges.add(value("host_wal"));
        if (value("host_preferences_name") !== null)
            this.lists.add("preferences");
        const connection = value("host_last_connection_time") ?? value("plugin_last_connection_time");
        if (Number(connection) > 0)
            this.connections.add(withRank(connection, value("rank_last_connection")));
        const counter = value("host_last_seen_time") ?? value("plugin_last_seen_time");
        if (Number(counter) > 0)
            this.counters.add(`counter ${withRank(counter, value("rank_last_seen"))}`);
    }

    texts() {
        const isLog = this.dates.length > 0;
        return [[...this.paired].join(", "), [...this.connections].join("; "), this.seen > 0 ? "seen" : "",
                [...this.logChanges].join(", "), [...this.lists].join(", "),
                isLog && this.seen > 0 ? numbers.format(this.seen) : "", this.dates[0] ?? "",
                this.dates.at(-1) ?? [...this.counters].join("; "), shortList(this.places, 3)];
    }
}

function withRank(counter, rank) {
    return rank === null ? counter : `${counter} (rank ${rank})`;
}

function shortList(texts, most) {
    const shown = texts.slice(0, most).join("; ");
    return texts.length > most ? `${shown}; and ${numbers.format(texts.length - most)} more` : shown;
}

function placeText(data, row) {
    const file = data.value("host_file", row);
    if (file === null)
        return `row ${row + 1} of ${data.id}, place in the evidence unknown`;
    const keys = data.value("host_path", row);
    const line = data.value("host_line", row);
    if (keys !== null)
        return `${file} ${keys}`;
    return line === null ? `${file} ${data.value("host_table", row)} rowid ${data.value("host_rowid", row)}` : `${file} line ${line}`;
}

/** How a value is laid out, by the heading of its column. */
const cellClasses = {"Places": "places", "Kind of address": "whole", "Date, without year": "whole"};

/** A table that may be scrolled sideways. Its texts may be of the evidence. */
function plainTable(caption, headings, rows) {
    const view = element("div", undefined, "scroller");
    view.tabIndex = 0;
    view.setAttribute("role", "region");
    view.setAttribute("aria-label", caption);
    const table = element("table");
    table.append(element("caption", caption));
    const head = element("tr");
    for (const text of headings) {
        const heading = element("th", text);
        heading.scope = "col";
        head.append(heading);
    }
    const top = element("thead");
    top.append(head);
    const body = element("tbody");
    for (const texts of rows) {
        const row = element("tr");
        for (const [place, text] of texts.entries()) {
            const cell = element("td", undefined, cellClasses[headings[place]]);
            cell.append(text === "" ? "" : /address$/i.test(headings[place]) ? wholeTexts(text) : evidenceText(text));
            row.append(cell);
        }
        body.append(row);
    }
    table.append(top, body);
    view.append(table);
    return view;
}
