// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// What a column says, while the pointer or the focus is on its heading. Escape closes it.

const meaning = document.getElementById("meaning");

function showMeaning(heading, text) {
    meaning.textContent = text;
    meaning.hidden = false;
    const place = heading.getBoundingClientRect();
    const left = Math.min(place.left, document.documentElement.clientWidth - meaning.offsetWidth - 8);
    const below = place.bottom + 4;
    const isRoom = below + meaning.offsetHeight <= window.innerHeight;
    meaning.style.left = `${Math.max(left, 8)}px`;
    meaning.style.top = `${isRoom ? below : Math.max(place.top - meaning.offsetHeight - 4, 0)}px`;
}

function hideMeaning() {
    meaning.hidden = true;
}

function tellMeaning(heading, text) {
    if (!text)
        return;
    heading.setAttribute("aria-describedby", "meaning");
    for (const event of ["mouseenter", "focus"])
        heading.addEventListener(event, () => showMeaning(heading, text));
    for (const event of ["mouseleave", "blur"])
        heading.addEventListener(event, hideMeaning);
}

document.addEventListener("keydown", event => {
    if (event.key === "Escape")
        hideMeaning();
});
document.addEventListener("scroll", hideMeaning, {capture: true, passive: true});
