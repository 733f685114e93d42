// Run within the page by SeiteTest: reads the tables as a browser shows them, sorts by clicks, navigates by keys,
// filters, and stores the results in <pre id="probe"> as an encoded JSON text.
(() => {
    "use strict";
    const found = {};
    const grids = [...document.querySelectorAll("table.grid")];
    const shown = table => [...table.tBodies[0].rows].filter(row => row.offsetParent !== null);
    const names = table => shown(table).map(row => row.cells[0].textContent);
    const read = cell => ({
        kind: cell.className,
        mark: cell.dataset.p ?? null,
        file: cell.querySelector(".n")?.textContent ?? null,
        version: cell.querySelector(".v")?.textContent ?? null,
        second: cell.dataset.r ?? null,
        periods: cell.querySelector(".q")?.textContent ?? null,
        text: cell.innerText,
    });

    found.title = document.title;
    found.lang = document.documentElement.lang;
    found.hurt = window.boese === 1;
    found.foreign = [...document.querySelectorAll("[src], link, iframe, img, object")].length;
    found.scripts = document.querySelectorAll("script").length;
    found.tables = grids.map(table => ({
        type: Number(table.closest("section").dataset.type),
        caption: table.caption.textContent,
        heads: [...table.tHead.rows[0].cells].map(cell => cell.textContent),
        scopes: [...table.querySelectorAll("th")].every(cell =>
            cell.scope === (cell.closest("thead") ? "col" : "row")),
        sorts: [...table.tHead.rows[0].cells].map(cell => cell.getAttribute("aria-sort")),
        rows: [...table.tBodies[0].rows].map(row => ({
            name: row.cells[0].textContent,
            cells: [...row.cells].slice(1).map(read),
        })),
    }));
    const plugins = document.getElementById("plugins");
    found.plugins = [...plugins.tBodies[0].rows].map(row => [...row.cells].map(cell => cell.textContent));

    // Sorting
    const first = grids[0];
    const button = column => first.tHead.rows[0].cells[column].querySelector("button");
    const state = () => ({
        names: names(first), sorts: [...first.tHead.rows[0].cells].map(cell => cell.getAttribute("aria-sort")),
    });
    found.sorting = [];
    for (const column of [2, 2, 0, 0, 0]) {
        button(column).click();
        found.sorting.push(state());
    }

    // Keys
    const press = (key, more = {}) => document.activeElement.dispatchEvent(
        new KeyboardEvent("keydown", { key, bubbles: true, cancelable: true, ...more }));
    const where = () => {
        const cell = document.activeElement.closest("td, th");
        return [cell.parentNode.rowIndex, cell.cellIndex];
    };
    found.stops = grids.map(table =>
        [...table.querySelectorAll("button, td, th")].filter(element => element.tabIndex === 0).length);
    button(0).focus();
    found.walk = [];
    for (const key of ["ArrowDown", "ArrowRight", "ArrowRight", "End", "Home", "ArrowUp", "ArrowUp", "PageDown"]) {
        press(key);
        found.walk.push([key, ...where()]);
    }
    press("End", { ctrlKey: true });
    found.walk.push(["Ctrl+End", ...where()]);
    press("Home", { ctrlKey: true });
    found.walk.push(["Ctrl+Home", ...where()]);
    const details = document.getElementById("details");
    press("ArrowDown");
    press("ArrowRight");
    found.details = { hidden: details.hidden, text: details.innerText };
    press("Escape");
    found.closed = details.hidden;

    // Filter
    const words = document.getElementById("filter");
    const show = document.getElementById("show");
    const filter = (text, what) => {
        words.value = text;
        words.dispatchEvent(new Event("input"));
        show.value = what;
        show.dispatchEvent(new Event("change"));
        return names(first);
    };
    found.filtered = { words: filter("lstb", "all"), gap: filter("", "gap"), fallback: filter("", "fallback"),
                       contested: filter("", "contested"), none: filter("gibt es nicht", "all"),
                       all: filter("", "all") };
    found.status = document.getElementById("status").textContent;

    const probe = document.createElement("pre");
    probe.id = "probe";
    probe.textContent = encodeURIComponent(JSON.stringify(found));
    document.body.append(probe);
})();
