// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Puts the parts together when the document is there.

const block = JSON.parse(document.getElementById("data").textContent);
const tables = new Map(block.tables.map(content => [content.id, new TableData(content)]));
const views = [];
document.querySelectorAll(".with-script").forEach(part => { part.hidden = false; });
document.querySelectorAll(".without-script").forEach(part => { part.hidden = true; });
try {
    for (const data of tables.values()) {
        if (data.count > 0)
            views.push(new RowTable(document.getElementById(data.id), data));
    }
} finally {
    document.querySelectorAll(".window").forEach(view => view.classList.add("ready"));
}
const devicePage = new DevicePage(tables);
new PageSearch(tables);
new Printing(views, tables.get("cards"));

/** Goes where the page's address says. */
function followAddress() {
    const {id} = readAddress();
    if (remembered.size > 0)
        writeAddress(id, remembered);
    const isDevice = devicePage.follow(id);
    if (!isDevice && id)
        document.getElementById(id)?.scrollIntoView();
    views.forEach(view => {
        view.measure();
        view.show();
    });
}

window.addEventListener("hashchange", followAddress);
window.addEventListener("resize", () => views.forEach(view => {
    view.measure();
    view.show();
}));
followAddress();
