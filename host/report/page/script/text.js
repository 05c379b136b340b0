// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT
"use strict";

// Making parts of the document. Every text of the evidence is put there as text, never as markup.

const numbers = new Intl.NumberFormat("en");

function element(name, text, className) {
    const made = document.createElement(name);
    if (text !== undefined)
        made.textContent = text;
    if (className)
        made.className = className;
    return made;
}

function button(text, work, label) {
    const made = element("button", text);
    made.type = "button";
    if (label)
        made.setAttribute("aria-label", label);
    made.addEventListener("click", work);
    return made;
}

function linkTo(id, text) {
    const made = element("a", text);
    made.href = `#${id}`;
    return made;
}

function counted(count, one, many) {
    return `${numbers.format(count)} ${count === 1 ? one : many}`;
}

/** A value of a row, or null. Blanks at its ends can be seen. */
function evidenceText(value) {
    if (value === null)
        return element("span", "∅", "null");
    const made = element("bdi");
    const [, before, middle, after] = /^( *)(.*?)( *)$/s.exec(value);
    for (const [text, className] of [[before, "blank"], [middle, ""], [after, "blank"]]) {
        if (text !== "")
            made.append(className ? element("span", text, className) : text);
    }
    return made;
}

/** Texts that are separated by |, each in one line where it is short. */
function wholeTexts(value) {
    if (value === null)
        return evidenceText(value);
    const made = element("span");
    value.split(" | ").forEach((text, place) => {
        const one = evidenceText(text);
        if (text.length <= 40)
            one.className = "whole";
        made.append(place > 0 ? " | " : "", one);
    });
    return made;
}

/** The clipboard interface is closed to pages that are files. */
function copyText(text, place, status) {
    const area = element("textarea", text);
    place.append(area);
    area.select();
    const isDone = document.execCommand("copy");
    area.remove();
    status.textContent = isDone ? "Copied." : "The browser does not allow copying.";
}
