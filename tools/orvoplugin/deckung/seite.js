"use strict";
(() => {
    const grids = [...document.querySelectorAll("table.grid")];
    const details = document.getElementById("details");
    const status = document.getElementById("status");
    const words = document.getElementById("filter");
    const show = document.getElementById("show");
    const natural = new Intl.Collator("de", { numeric: true, sensitivity: "base" });
    const bodyOf = table => table.tBodies[0];
    const text = (element, selector) => element.querySelector(selector)?.textContent ?? "";

    // --- Sorting: by a header's button; the order that the page came with is that of the sub-case types. ---

    for (const table of document.querySelectorAll("table.sortable"))
        [...bodyOf(table).rows].forEach((row, place) => { row.place = place; });

    const compareCells = column => (a, b) => {
        const left = a.cells[column], right = b.cells[column];
        if (left.tagName === "TH")
            return a.place - b.place;
        if (left.dataset.v !== undefined)
            return Number(left.dataset.v) - Number(right.dataset.v);
        const empty = cell => !cell.dataset.p;
        if (empty(left) || empty(right))
            return Number(empty(left)) - Number(empty(right));
        return natural.compare(text(left, ".n") || left.textContent, text(right, ".n") || right.textContent)
            || natural.compare(text(left, ".v"), text(right, ".v"));
    };

    function sort(header) {
        const table = header.closest("table");
        const descending = header.getAttribute("aria-sort") === "ascending";
        for (const other of table.tHead.rows[0].cells)
            if (other.hasAttribute("aria-sort"))
                other.setAttribute("aria-sort", "none");
        header.setAttribute("aria-sort", descending ? "descending" : "ascending");
        const compare = compareCells(header.cellIndex);
        const rows = [...bodyOf(table).rows].sort((a, b) => (descending ? -1 : 1) * compare(a, b) || a.place - b.place);
        bodyOf(table).append(...rows);
        status.textContent = "sorted by " + header.textContent.trim() + (descending ? ", descending" : ", ascending");
    }

    for (const button of document.querySelectorAll("table.sortable thead button"))
        button.addEventListener("click", () => sort(button.closest("th")));

    // --- Filter ---

    const wanted = {
        all: () => true,
        gap: row => row.querySelector(".g") !== null,
        fallback: row => row.querySelector(".f") !== null,
        contested: row => row.querySelector("[data-r]") !== null,
    };

    function filter() {
        const parts = words.value.toLocaleLowerCase("de").split(/\s+/).filter(Boolean);
        let shown = 0, all = 0;
        for (const table of grids) {
            let here = 0;
            for (const row of bodyOf(table).rows) {
                row.words ??= row.textContent.toLocaleLowerCase("de");
                const fits = wanted[show.value](row) && parts.every(part => row.words.includes(part));
                row.hidden = !fits;
                here += fits;
                ++all;
            }
            table.closest("section").classList.toggle("empty", here === 0);
            shown += here;
            if (!table.querySelector("[tabindex='0']")?.checkVisibility())
                enter(table, 0, 0, false);
        }
        status.textContent = shown === all ? "" : shown + " of " + all + " rows shown";
    }

    words.addEventListener("input", filter);
    show.addEventListener("change", filter);

    // --- Keyboard: one stop of the tab key for each table, arrow keys within it ---

    const rowsOf = table => [table.tHead.rows[0], ...[...bodyOf(table).rows].filter(row => !row.hidden)];
    const stopOf = cell => cell.querySelector("button") ?? cell;

    function enter(table, row, column, focus = true) {
        const rows = rowsOf(table);
        const target = rows[Math.max(0, Math.min(row, rows.length - 1))];
        const stop = stopOf(target.cells[Math.max(0, Math.min(column, target.cells.length - 1))]);
        const before = table.querySelector("[tabindex='0']");
        if (before)
            before.tabIndex = -1;
        stop.tabIndex = 0;
        if (focus) {
            stop.focus();
            stop.scrollIntoView({ block: "nearest", inline: "nearest" });
        }
    }

    const kPage = 10;
    const moves = {
        ArrowUp: (r, c) => [r - 1, c], ArrowDown: (r, c) => [r + 1, c],
        ArrowLeft: (r, c) => [r, c - 1], ArrowRight: (r, c) => [r, c + 1],
        PageUp: (r, c) => [r - kPage, c], PageDown: (r, c) => [r + kPage, c],
        Home: (r, c, ctrl) => [ctrl ? 0 : r, 0], End: (r, c, ctrl) => [ctrl ? Infinity : r, Infinity],
    };

    for (const table of grids) {
        for (const button of table.tHead.querySelectorAll("button"))
            button.tabIndex = -1;
        enter(table, 0, 0, false);
        table.addEventListener("keydown", event => {
            const cell = event.target.closest("td, th");
            const move = moves[event.key];
            if (!cell || !move || event.altKey || event.metaKey)
                return;
            event.preventDefault();
            enter(table, ...move(rowsOf(table).indexOf(cell.parentNode), cell.cellIndex, event.ctrlKey));
        });
        table.addEventListener("pointerdown", event => {
            const cell = event.target.closest("tbody td, tbody th");
            if (cell)
                enter(table, rowsOf(table).indexOf(cell.parentNode), cell.cellIndex);
        });
        table.addEventListener("focusin", event => tell(event.target.closest("tbody td")));
        table.addEventListener("focusout", () => tell(null));
    }

    // --- Details of the cell that has the focus ---

    const pluginRows = document.getElementById("plugins")?.tBodies[0].rows;
    const plugins = {};
    for (const row of pluginRows ?? [])
        plugins[row.dataset.p] = row;

    function paragraph(label, content) {
        const line = document.createElement("p");
        const strong = document.createElement("strong");
        strong.textContent = label;
        line.append(strong, content);
        details.append(line);
    }

    function pluginText(mark) {
        const cells = plugins[mark].cells;
        return cells[1].textContent + ", version " + (cells[2].textContent || "not stated") + ", file version "
            + (cells[3].textContent || "not stated") + (cells[4].textContent === "yes" ? ", resident" : "");
    }

    function tell(cell) {
        details.hidden = !cell;
        details.replaceChildren();
        if (!cell)
            return;
        const year = cell.closest("table").tHead.rows[0].cells[cell.cellIndex].textContent.trim();
        const type = cell.closest("section").querySelector("h2").firstChild.textContent.trim();
        paragraph(type + ", " + cell.parentNode.cells[0].textContent.trim() + ", " + year, "");
        if (cell.dataset.p)
            paragraph(cell.classList.contains("f") ? "Period-independent entry of" : "Served by",
                      pluginText(cell.dataset.p));
        else
            paragraph("Nobody answers", "");
        if (cell.dataset.r)
            paragraph("Without it would answer", pluginText(cell.dataset.r));
        if (text(cell, ".q"))
            paragraph("Filed for", text(cell, ".q") + "; look-ups for any period of the year find it");
    }

    document.addEventListener("keydown", event => {
        if (event.key === "Escape")
            tell(null);
    });
    document.getElementById("tools").hidden = false;
})();
