// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Rows that are left by the filter, or marked, as files that the browser saves. Texts stand as the page shows them.

/** A text that a spreadsheet would run gets an apostrophe in front, as in the report's own CSV files. */
function separatedCell(value) {
    if (value === null)
        return "";
    const isNumber = /^-?\d+(\.\d+)?(e[-+]?\d+)?$/i.test(value);
    const text = !isNumber && /^[\s\p{Cf}]*[=+\-@＝＋－＠]/u.test(value) ? `'${value}` : value;
    return /[",\r\n]/.test(text) ? `"${text.replaceAll("\"", "\"\"")}"` : text;
}

function separatedText(columns, rows) {
    const lines = [columns.map(column => separatedCell(column.name)).join(",")];
    for (const row of rows)
        lines.push(columns.map(column => separatedCell(column.value(row))).join(","));
    return `${lines.join("\r\n")}\r\n`;
}

function jsonText(columns, rows) {
    const objects = rows.map(row => Object.fromEntries(columns.map(column => [column.name, column.value(row)])));
    return `${JSON.stringify(objects, null, 1)}\n`;
}

const exportForms = {
    csv: {type: "text/csv", text: separatedText},
    json: {type: "application/json", text: jsonText},
};

function saveRows(data, rows, suffix) {
    const {type, text} = exportForms[suffix];
    const link = element("a");
    link.href = URL.createObjectURL(new Blob([text(data.columns, rows)], {type: `${type};charset=utf-8`}));
    link.download = `${data.id}.${suffix}`;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
