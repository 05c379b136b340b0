// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// The values of a column, as the page's data block has them: one text for all rows, or different values with the place of
// each row's among them, or one value for all. Neither separator nor null can be part of a value: both would stand there
// as an escape. What is not looked at is not taken apart.

const valueSeparator = "\u00a0";
const nullValue = "\\N";
const addressForm = /[0-9a-f]{2}[:-][0-9a-f]{2}[:-][0-9a-f]{2}/i;

function withoutSeparators(text) {
    return text.replaceAll(/[:-]/g, "");
}

/** What is looked for: letter case is nothing, and in addresses their separators are nothing either. */
class SearchWords {
    constructor(text) {
        this.text = text.toLowerCase();
        const bare = withoutSeparators(this.text.trim());
        this.bare = /^[0-9a-f]{4,12}$/.test(bare) ? bare : null;
    }

    isIn(value) {
        const lower = value.toLowerCase();
        return lower.includes(this.text)
            || (this.bare !== null && addressForm.test(lower) && withoutSeparators(lower).includes(this.bare));
    }
}

/** Texts in one, to be searched at once. */
class SearchText {
    constructor(texts) {
        this.text = texts.join("\n").toLowerCase();
        this.ends = new Uint32Array(texts.length);
        let end = -1;
        for (let place = 0; place < texts.length; ++place) {
            end = this.text.indexOf("\n", end + 1);
            this.ends[place] = end < 0 ? this.text.length : end;
            if (end < 0)
                break;
        }
    }

    /** Sets found[place] for each text that has the words in it. */
    find(words, found) {
        let place = 0;
        let hit = this.text.indexOf(words);
        while (hit >= 0) {
            while (this.ends[place] < hit)
                ++place;
            found[place] = 1;
            hit = this.text.indexOf(words, this.ends[place]);
        }
    }
}

class Column {
    constructor(about, count, others) {
        Object.assign(this, about);
        this.count = count;
        this.others = others;
    }

    /** The column that holds the values: equal ones are there once. */
    get holder() {
        return this.as === undefined ? this : this.others[this.as];
    }

    /** The different values, or those of all rows. */
    get list() {
        this.splitList ??= this.same !== undefined ? [this.same] : (this.text ?? this.values).split(valueSeparator);
        return this.splitList;
    }

    /** Of each row, among the different values; null where all rows have their own. */
    get places() {
        if (this.values === undefined)
            return null;
        if (!this.readPlaces) {
            const bytes = atob(this.rows);
            this.readPlaces = this.wide ? new Uint16Array(this.count) : new Uint8Array(this.count);
            for (let row = 0; row < this.count; ++row)
                this.readPlaces[row] = this.wide ? bytes.charCodeAt(2 * row) | bytes.charCodeAt(2 * row + 1) << 8
                                                 : bytes.charCodeAt(row);
        }
        return this.readPlaces;
    }

    placeOf(row) {
        return this.same !== undefined ? 0 : this.places ? this.places[row] : row;
    }

    /** A text, or null. */
    value(row) {
        const holder = this.holder;
        const value = holder.list[holder.placeOf(row)];
        return value === nullValue ? null : value;
    }

    prepareSearch() {
        if (this.as !== undefined || this.searchText)
            return;
        const shown = this.list.map(value => value === nullValue ? "" : value);
        this.searchText = new SearchText(shown);
        this.bareText = addressForm.test(this.searchText.text) ? new SearchText(shown.map(withoutSeparators)) : null;
    }

    /** Sets found[row] for each row with the words in this column. */
    search(words, found) {
        if (this.as !== undefined)
            return; // the column with the same values is searched
        this.prepareSearch();
        const places = this.places;
        const hits = places || this.same !== undefined ? new Uint8Array(this.list.length) : found;
        this.searchText.find(words.text, hits);
        if (this.bareText && words.bare !== null)
            this.bareText.find(words.bare, hits);
        if (this.same !== undefined && hits[0])
            found.fill(1);
        else if (places && hits.includes(1))
            places.forEach((place, row) => { found[row] |= hits[place]; });
    }

    /** Of each row: what it is sorted by. */
    get ranks() {
        const holder = this.holder;
        holder.knownRanks ??= holder.ranksOfList();
        return row => holder.knownRanks[holder.placeOf(row)];
    }

    ranksOfList() {
        const list = this.list;
        const keys = list.map(value => value === nullValue ? -Infinity : Number(value === "" ? NaN : value));
        const byText = (one, two) => list[one] === list[two] ? 0 : list[one] < list[two] ? -1 : 1;
        const order = Uint32Array.from(list, (unused, place) => place);
        // Null, then numbers, then texts.
        order.sort((one, two) => Number.isNaN(keys[one]) || Number.isNaN(keys[two])
            ? Number.isNaN(keys[one]) - Number.isNaN(keys[two]) || byText(one, two)
            : keys[one] === keys[two] ? 0 : keys[one] - keys[two]);
        const ranks = new Uint32Array(list.length);
        for (let i = 1; i < order.length; ++i)
            ranks[order[i]] = ranks[order[i - 1]] + (list[order[i]] === list[order[i - 1]] ? 0 : 1);
        return ranks;
    }
}

/** The rows of a table in the data block. */
class TableData {
    constructor(content) {
        this.id = content.id;
        this.count = content.count;
        this.opens = content.opens; // the column whose number has a page
        this.columns = [];
        for (const about of content.columns)
            this.columns.push(new Column(about, content.count, this.columns));
    }

    column(name) {
        return this.columns.find(column => column.name === name);
    }

    /** The text there; null also where there is no such column. */
    value(name, row) {
        return this.column(name)?.value(row) ?? null;
    }

    prepareSearch() {
        this.columns.forEach(column => column.prepareSearch());
    }

    /** Of each row, 1 where the words are in it. */
    search(words) {
        const found = new Uint8Array(this.count);
        this.columns.forEach(column => column.search(words, found));
        return found;
    }

    /** The rows whose column has that value, of which there are many. */
    rowsWith(name, value) {
        const holder = this.column(name)?.holder;
        const rows = [];
        for (let row = 0; holder && row < this.count; ++row) {
            if (holder.list[holder.placeOf(row)] === value)
                rows.push(row);
        }
        return rows;
    }
}
