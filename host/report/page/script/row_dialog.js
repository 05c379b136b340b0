// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// All values of one row.

const rowDialog = document.getElementById("row");

function openRow(data, row) {
    const list = rowDialog.querySelector("dl");
    rowDialog.querySelector("h2").textContent = `Row ${numbers.format(row + 1)}`;
    list.replaceChildren();
    for (const column of data.columns) {
        const name = element("dt", column.heading);
        name.append(element("small", column.name));
        const value = element("dd");
        value.append(evidenceText(column.value(row)));
        list.append(name, value);
    }
    const status = rowDialog.querySelector("[role=status]");
    status.textContent = "";
    rowDialog.querySelector(".copy").onclick = event => {
        copyText(data.columns.map(column => `${column.name}\t${column.value(row) ?? ""}`).join("\n"), rowDialog, status);
        event.target.focus();
    };
    rowDialog.showModal();
}

rowDialog.querySelector(".close").addEventListener("click", () => rowDialog.close());
