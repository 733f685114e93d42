// Run within the page by SeiteTest: reads the tables as a browser shows them, sorts by clicks, navigates by keys,
// filters, downloads, and stores the results in <pre id="probe"> as an encoded JSON text, or gives them to the page
// that frames this one.
(() => {
    "use strict";
    const found = {};
    const id = name => document.getElementById(name);
    const grids = [...document.querySelectorAll("table.grid")];
    const shown = table => [...table.tBodies[0].rows].filter(row => row.offsetParent !== null);
    const names = table => shown(table).map(row => row.cells[0].textContent);
    const heads = table => [...table.tHead.rows[0].cells].filter(cell => !cell.hidden).map(cell => cell.textContent);
    const sums = table => [...table.tFoot.rows].map(row =>
        [row.cells[0].textContent, ...[...row.cells].slice(1).filter(cell => !cell.hidden).map(cell => cell.textContent)]);
    const list = selector => [...document.querySelectorAll(selector)].map(row =>
        [...row.cells].map(cell => cell.innerText.trim()));
    const read = cell => ({
        kind: cell.classList[0],
        required: cell.classList.contains("required"),
        mark: cell.dataset.p ?? null,
        before: cell.dataset.b ?? null,
        second: cell.dataset.r ?? null,
        periods: cell.dataset.q ?? null,
        text: cell.querySelector("b").textContent,
        title: cell.title,
    });

    found.title = document.title;
    found.lang = document.documentElement.lang;
    found.hurt = window.boese === 1;
    found.foreign = [...document.querySelectorAll("[src], link, iframe, img, object")].length;
    found.scripts = document.querySelectorAll("script:not([type])").length;
    found.styled = getComputedStyle(document.querySelector("thead")).position;
    found.ids = [...document.querySelectorAll("[id]")].map(element => element.id);
    found.targets = [...document.querySelectorAll("a[href^='#']")].map(link => link.getAttribute("href").slice(1));
    found.labels = [...document.querySelectorAll("input, select")].map(control => control.labels.length);
    found.footer = document.querySelector("footer").innerText;
    found.tiles = [...document.querySelectorAll(".tiles li")].map(tile => tile.innerText.trim());
    found.plugins = [...id("plugins").tBodies[0].rows].map(row => ({ ...row.dataset }));
    found.byYear = [...id("plugins").tBodies[0].rows].map(row => [...row.cells].map(cell => cell.innerText.trim()));
    found.yearHeads = [...id("plugins").tHead.rows[0].cells].map(cell => cell.textContent);
    found.legend = [...document.querySelectorAll(".plugins li")].map(item => item.innerText.trim());
    found.gaps = list("#gaps tbody tr");
    found.required = list("#gaps tbody tr.bad").length;
    found.notes = [...document.querySelectorAll("#notes dt")].map(term =>
        term.innerText.trim() + ": " + term.nextElementSibling.innerText);
    found.tables = grids.map(table => ({
        type: Number(table.closest("section").dataset.type),
        heads: heads(table),
        sums: sums(table),
        scopes: [...table.querySelectorAll("th")].every(cell =>
            cell.scope === (cell.closest("thead") ? "col" : "row")),
        labelled: id(table.getAttribute("aria-labelledby")) !== null,
        sorts: [...table.tHead.rows[0].cells].map(cell => cell.getAttribute("aria-sort")),
        rows: [...table.tBodies[0].rows].map(row => ({
            name: row.cells[0].textContent,
            cells: [...row.cells].slice(1, -1).map(read),
            count: row.lastElementChild.textContent,
        })),
    }));

    // Room
    const first = grids[0];
    const place = first.getBoundingClientRect();
    const box = first.parentNode;
    found.room = {
        window: [innerWidth, innerHeight], bottom: place.bottom, right: place.right,
        scrolls: box.scrollHeight > box.clientHeight || box.scrollWidth > box.clientWidth,
        overflow: document.documentElement.scrollWidth - document.documentElement.clientWidth,
        type: parseFloat(getComputedStyle(first).fontSize),
    };
    scrollTo(0, 300);
    found.headerAfterScrolling = document.querySelector("header").getBoundingClientRect().top;
    box.scrollTo(0, 200);
    found.scrolled = box.scrollTop;
    found.yearsAfterScrolling = first.tHead.getBoundingClientRect().top - box.getBoundingClientRect().top;
    box.scrollTo(0, 0);
    scrollTo(0, 0);

    // Sorting
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
        [...table.parentNode.parentNode.querySelectorAll("*")].filter(element => element.tabIndex === 0).length);
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
    const details = id("details");
    press("ArrowDown");
    press("ArrowRight");
    found.details = details.textContent;
    press("Escape");
    found.closed = !details.classList.contains("on");

    // Filter
    const filter = (text, what, from, to) => {
        id("filter").value = text;
        id("show").value = what;
        id("from").value = from ?? id("from").options[id("from").length - 1].value;
        id("to").value = to ?? id("to").options[0].value;
        id("filter").dispatchEvent(new Event("input"));
        return { names: names(first), heads: heads(first), sums: sums(first), status: id("status").textContent };
    };
    const option = what => [...id("show").options].some(each => each.value === what);
    found.filtered = { words: filter("lstb", ""), plugin: filter("monat", ""), years: filter("", "", 2008, 2008) };
    for (const what of ["gap", "fallback", "contested", "lost", "lower"])
        if (option(what))
            found.filtered[what] = filter("", what);
    found.filtered.none = filter("gibt es nicht", "");

    // Download. The text is taken where it is made: to read it back from the browser takes real time, and the
    // page's virtual time could run out before.
    let parts = null;
    window.Blob = class extends Blob {
        constructor(made, options) {
            super(made, options);
            parts = made;
        }
    };
    const download = () => {
        id("csv").click();
        return parts.join("");
    };
    filter("lstb", "");
    found.csvOfRow = download();
    found.filtered.all = filter("", "");
    found.csv = download();

    if (parent !== window)
        return parent.postMessage(JSON.stringify(found), "*");
    const probe = document.createElement("pre");
    probe.id = "probe";
    probe.textContent = encodeURIComponent(JSON.stringify(found));
    document.body.append(probe);
})();
