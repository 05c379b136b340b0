// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// What the page remembers stands in its address, behind the section's name: #devices?devices=plugin_uuid+host_rssi. So it
// can be quoted, and nothing is kept elsewhere.

function readAddress() {
    const [id, settings = ""] = decodeURIComponent(location.hash.slice(1)).split("?");
    return {id, settings: new Map(settings.split("&").filter(Boolean).map(setting => setting.split("=")))};
}

function writeAddress(id, settings) {
    const text = [...settings].map(([name, value]) => `${name}=${value}`).join("&");
    history.replaceState(null, "", `#${id}${text ? `?${text}` : ""}`);
}

const remembered = readAddress().settings;

/** The names of the columns of a table that are wanted, or nothing where nobody has chosen. */
function rememberedColumns(table) {
    return remembered.get(table)?.split("+");
}

function rememberColumns(table, names) {
    if (names)
        remembered.set(table, names.join("+"));
    else
        remembered.delete(table);
    writeAddress(readAddress().id || table, remembered);
}
