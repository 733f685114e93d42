"use strict";
(() => {
    const id = name => document.getElementById(name);
    const texts = JSON.parse(id("texts").textContent);
    const say = (name, ...values) => texts[name].replace(/\{(\d)\}/g, (mark, place) => values[place]);
    const grids = [...document.querySelectorAll("table.grid")];
    const isDiff = document.body.classList.contains("diff");
    const details = id("details"), status = id("status"), words = id("filter"), show = id("show");
    const natural = new Intl.Collator("de", { numeric: true, sensitivity: "base" });
    const bodyOf = table => table.tBodies[0];
    const headsOf = table => table.tHead.rows[0].cells;
    const plugins = Object.create(null);
    for (const row of id("plugins")?.tBodies[0].rows ?? [])
        plugins[row.dataset.p] = row.dataset;

    // --- Sorting: by a header's button; the order that the page came with is that of the sub-case types. ---

    const compareCells = column => (a, b) => {
        const left = a.cells[column], right = b.cells[column];
        if (left.tagName === "TH")
            return a.place - b.place;
        if (left.className === "sum")
            return Number(left.textContent) - Number(right.textContent);
        const name = cell => plugins[cell.dataset.p]?.name;
        if (!name(left) || !name(right))
            return Number(!name(left)) - Number(!name(right));
        return natural.compare(name(left), name(right)) || natural.compare(left.textContent, right.textContent);
    };

    function sort(header) {
        const table = header.closest("table");
        const descending = header.getAttribute("aria-sort") === "ascending";
        for (const other of headsOf(table))
            other.setAttribute("aria-sort", "none");
        header.setAttribute("aria-sort", descending ? "descending" : "ascending");
        const compare = compareCells(header.cellIndex);
        const rows = [...bodyOf(table).rows].sort((a, b) => (descending ? -1 : 1) * compare(a, b) || a.place - b.place);
        bodyOf(table).append(...rows);
        status.textContent = say("sorted", header.textContent, texts[descending ? "descending" : "ascending"]);
    }

    for (const table of grids) {
        [...bodyOf(table).rows].forEach((row, place) => { row.place = place; });
        for (const header of headsOf(table)) {
            const button = document.createElement("button");
            button.type = "button";
            button.tabIndex = -1;
            button.textContent = header.textContent;
            button.addEventListener("click", () => sort(header));
            header.replaceChildren(button);
            header.setAttribute("aria-sort", header.cellIndex === 0 ? "ascending" : "none");
        }
        table.setAttribute("role", "grid");
        table.setAttribute("aria-readonly", "true");
        table.parentNode.removeAttribute("tabindex"); // its cells scroll it
    }

    // --- Filter: rows by words and by what their cells show, columns by years and by what their cells show ---

    const years = [...new Set([...document.querySelectorAll("thead [data-from]")]
        .flatMap(head => [Number(head.dataset.from), Number(head.dataset.to)]))].sort((a, b) => b - a);
    for (const year of years) {
        id("from").add(new Option(year, year));
        id("to").add(new Option(year, year));
    }
    id("from").value = years.at(-1);
    id("to").value = years[0];

    const fits = (cell, kind) => kind === "contested" ? cell.dataset.r !== undefined : cell.classList.contains(kind);

    function wordsOf(row) {
        const parts = [row.cells[0].textContent];
        for (const mark of new Set([...row.cells].flatMap(cell => [cell.dataset.p, cell.dataset.r, cell.dataset.b])))
            if (mark)
                parts.push(mark, plugins[mark].name, plugins[mark].file, plugins[mark].version);
        return parts.join(" ").toLocaleLowerCase("de");
    }

    function filterColumns(table, rows) {
        const hidden = [];
        for (const head of headsOf(table)) {
            const { from, to, other } = head.dataset;
            const inRange = from === undefined || (Number(to) >= Number(id("from").value) && Number(from) <= Number(id("to").value));
            const ofCells = from !== undefined || other !== undefined;
            hidden.push(!inRange || (show.value && ofCells && rows && !rows.some(row => fits(row.cells[head.cellIndex], show.value))));
        }
        for (const row of table.rows)
            hidden.forEach((hide, column) => { if (row.cells[column]) row.cells[column].hidden = hide; });
    }

    /// The sums are those of the cells in sight.
    function sumUp(table, rows) {
        const span = head => head.dataset.from === undefined ? 1 : head.dataset.to - head.dataset.from + 1;
        const heads = [...headsOf(table)].filter(head => !head.hidden && !head.dataset.other && head.className !== "sum" && head.cellIndex > 0);
        for (const row of table.tFoot.rows) {
            let total = 0;
            for (const head of heads) {
                const sum = span(head) * rows.filter(other => other.cells[head.cellIndex].classList.contains(row.dataset.c)).length;
                row.cells[head.cellIndex].textContent = sum;
                total += sum;
            }
            row.lastElementChild.textContent = total;
        }
        for (const row of rows)
            row.lastElementChild.textContent = heads.reduce((sum, head) => {
                const cell = row.cells[head.cellIndex];
                const counts = isDiff ? !fits(cell, "same") && !fits(cell, "gap") : fits(cell, "gap");
                return sum + (counts ? span(head) : 0);
            }, 0);
    }

    function filter() {
        const parts = words.value.toLocaleLowerCase("de").split(/\s+/).filter(Boolean);
        const inRange = cell => !cell.hidden;
        let shown = 0, all = 0;
        for (const table of grids) {
            const rows = [...bodyOf(table).rows];
            filterColumns(table, null);
            for (const row of rows) {
                row.words ??= wordsOf(row);
                const cells = [...row.cells].slice(1).filter(inRange);
                row.hidden = !parts.every(part => row.words.includes(part)) || (show.value && !cells.some(cell => fits(cell, show.value)));
            }
            const seen = rows.filter(row => !row.hidden);
            filterColumns(table, seen);
            sumUp(table, seen);
            table.closest("section").hidden = seen.length === 0;
            shown += seen.length;
            all += rows.length;
            if (!table.querySelector("[tabindex='0']")?.checkVisibility())
                enter(table, 0, 0, false);
        }
        filterColumnsOfPlugins();
        status.textContent = shown === all ? "" : say("shown", shown, all);
    }

    function filterColumnsOfPlugins() {
        const table = id("plugins");
        if (table)
            for (const head of headsOf(table))
                if (head.dataset.from !== undefined)
                    for (const row of table.rows)
                        row.cells[head.cellIndex].hidden =
                            Number(head.dataset.to) < Number(id("from").value) || Number(head.dataset.from) > Number(id("to").value);
    }

    for (const control of [words, show, id("from"), id("to")])
        control.addEventListener("input", filter);

    // --- Keyboard: one stop of the tab key for each table, arrow keys within it ---

    const rowsOf = table => [table.tHead.rows[0], ...[...bodyOf(table).rows].filter(row => !row.hidden)];
    const cellsOf = row => [...row.cells].filter(cell => !cell.hidden);
    const stopOf = cell => cell.querySelector("button") ?? cell;
    const within = (place, list) => list[Math.max(0, Math.min(place, list.length - 1))];

    function enter(table, row, column, focus = true) {
        const stop = stopOf(within(column, cellsOf(within(row, rowsOf(table)))));
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
    const placeOf = (table, cell) => [rowsOf(table).indexOf(cell.parentNode), cellsOf(cell.parentNode).indexOf(cell)];

    for (const table of grids) {
        enter(table, 0, 0, false);
        table.addEventListener("keydown", event => {
            const cell = event.target.closest("td, th");
            const move = moves[event.key];
            if (!cell || !move || event.altKey || event.metaKey)
                return;
            event.preventDefault();
            enter(table, ...move(...placeOf(table, cell), event.ctrlKey));
        });
        table.addEventListener("pointerdown", event => {
            const cell = event.target.closest("tbody td, tbody th");
            if (cell)
                enter(table, ...placeOf(table, cell));
        });
        table.addEventListener("focusin", event => tell(event.target.closest("tbody td")));
        table.addEventListener("focusout", () => tell(null));
    }

    // --- Details of the cell that has the focus ---

    const hint = details.textContent;

    function paragraph(text, strong) {
        const line = document.createElement("p");
        const target = strong ? line.appendChild(document.createElement("strong")) : line;
        target.textContent = text;
        details.append(line);
    }

    const labelOf = cell => [
        cell.closest("section").querySelector("h2").firstChild.textContent.trim(), cell.parentNode.cells[0].textContent,
        headsOf(cell.closest("table"))[cell.cellIndex].textContent,
    ];

    function tell(cell) {
        details.classList.toggle("on", Boolean(cell));
        details.replaceChildren();
        if (!cell)
            return paragraph(hint, false);
        paragraph(labelOf(cell).join(", "), true);
        if (!cell.title)
            return;
        paragraph(cell.title, false);
        for (const mark of new Set([cell.dataset.b, cell.dataset.p, cell.dataset.r]))
            if (mark) {
                const { file, version, fileVersion } = plugins[mark];
                paragraph(mark + ": " + say("file", file, version || texts.not_stated, fileVersion || texts.not_stated), false);
            }
    }

    document.addEventListener("keydown", event => {
        if (event.key === "Escape")
            tell(null);
    });

    // --- Download: a line for each cell of the rows and columns in sight ---

    /// Quoted as in RFC 4180; a text that a spreadsheet would take for a formula begins with an apostrophe.
    const quoted = text => "\"" + String(text ?? "").replace(/^[=+\-@\t\r]/, "'$&").replaceAll("\"", "\"\"") + "\"";

    function csvLine(cell) {
        const [kind, subCaseType, column] = labelOf(cell);
        const head = headsOf(cell.closest("table"))[cell.cellIndex].dataset;
        const { p, b, r, q } = cell.dataset;
        const answer = cell.classList[0];
        const start = [kind, subCaseType, head.from ?? column, head.to ?? column, answer];
        const plugin = mark => mark ? [plugins[mark].file, plugins[mark].version] : ["", ""];
        if (isDiff)
            return [...start, b ? plugins[b].file : "", b ? plugins[b].before : "", ...plugin(p)];
        return [...start, ...plugin(p), ...plugin(r), q, cell.classList.contains("required") ? "required" : ""];
    }

    function csv() {
        const start = ["type", "sub_case_type", "from", "to", isDiff ? "change" : "answer"];
        const heads = isDiff ? ["before", "before_version", "after", "after_version"]
                             : ["plugin", "version", "runner_up", "runner_up_version", "periods", "required"];
        const lines = [[...start, ...heads]];
        for (const table of grids)
            for (const row of bodyOf(table).rows)
                if (!row.hidden)
                    for (const cell of row.querySelectorAll("td[title]"))
                        if (!cell.hidden)
                            lines.push(csvLine(cell));
        return lines.map(line => line.map(quoted).join(";") + "\r\n").join("");
    }

    id("csv").addEventListener("click", () => {
        const link = document.createElement("a");
        link.href = URL.createObjectURL(new Blob(["\ufeff", csv()], { type: "text/csv;charset=utf-8" }));
        link.download = isDiff ? "diff.csv" : "coverage.csv";
        link.click();
        URL.revokeObjectURL(link.href);
    });

    id("tools").hidden = grids.length === 0;
    details.hidden = grids.length === 0;
})();
