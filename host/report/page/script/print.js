// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Two editions on paper: the one for reading has a line for each device, the other one every value of the rows that the
// filters leave.

const mostPrintedDevices = 5000;
const printedColumns = ["device", "device_name", "address", "host_address_kind", "known_as", "sources", "rows"];

class Printing {
    constructor(views, cards) {
        this.views = views;
        this.cards = cards;
        this.list = document.getElementById("printed-devices");
        this.isWhole = false;
        document.getElementById("print").addEventListener("click", () => window.print());
        document.getElementById("print-all").addEventListener("click", () => {
            this.isWhole = true;
            window.print();
        });
        window.addEventListener("beforeprint", () => this.begin());
        window.addEventListener("afterprint", () => this.end());
    }

    begin() {
        document.body.classList.toggle("print-all", this.isWhole);
        this.views.forEach(view => view.beforePrint(this.isWhole));
        if (this.list && this.cards && !this.isWhole)
            this.listDevices();
    }

    end() {
        this.isWhole = false;
        this.views.forEach(view => view.afterPrint());
        document.body.classList.remove("print-all");
    }

    listDevices() {
        const columns = printedColumns.map(name => this.cards.column(name)).filter(Boolean);
        const rows = [];
        for (let row = 0; row < Math.min(this.cards.count, mostPrintedDevices); ++row)
            rows.push(columns.map(column => shortened(column.value(row))));
        const left = this.cards.count - rows.length;
        const caption = "All devices" + (left > 0 ? `: the first ${numbers.format(rows.length)}; ${numbers.format(left)} more ` +
                                                    "stand in the page itself" : "");
        const table = plainTable(caption, columns.map(column => column.heading), rows).querySelector("table");
        this.list.replaceChildren(table);
    }
}

/** A line of the list has room for so much; the page has all of it. */
function shortened(value) {
    const most = 60;
    const text = value ?? "";
    return text.length > most ? `${text.slice(0, most)}…` : text;
}
