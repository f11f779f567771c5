'use strict';

// Filters the rows of all tables by a text, a severity and a name. What is chosen stands in the address, behind "#",
// so that a link can show it: #filter=text&severity=error&plugin=Graphic_View
(() => {
    const form = document.getElementById('filter');
    if (!form) {
        return;
    }
    const fields = ['filter', 'severity', 'plugin'].map((name) => form.elements.namedItem(name)).filter(Boolean);
    const tables = [...document.querySelectorAll('table[data-filtered]')].map((table) => ({
        output: table.querySelector('output'),
        rows: [...table.tBodies[0].rows].map((row) => ({
            row,
            text: row.textContent.toLowerCase(),
            severity: row.dataset.severity,
            names: row.dataset.names.split('\n'),
        })),
    }));
    const valueOf = (name) => fields.find((field) => field.name === name)?.value ?? '';

    const filter = () => {
        const words = valueOf('filter').toLowerCase().split(' ').filter(Boolean);
        const severity = valueOf('severity');
        const name = valueOf('plugin');
        for (const { output, rows } of tables) {
            let shown = 0;
            for (const each of rows) {
                each.row.hidden = !(words.every((word) => each.text.includes(word))
                    && (!severity || !each.severity || each.severity === severity)
                    && (!name || each.names.includes(name)));
                shown += each.row.hidden ? 0 : 1;
            }
            output.textContent = shown === rows.length ? `${shown}` : `${shown} of ${rows.length}`;
        }
    };

    const remember = () => {
        const chosen = new URLSearchParams();
        for (const field of fields) {
            if (field.value) {
                chosen.set(field.name, field.value);
            }
        }
        history.replaceState(null, '', `#${chosen}`);
    };

    const readAddress = () => {
        const chosen = new URLSearchParams(location.hash.slice(1));
        for (const field of fields) {
            field.value = chosen.get(field.name) ?? '';
        }
        filter();
    };

    form.addEventListener('input', () => {
        filter();
        remember();
    });
    form.addEventListener('reset', () => setTimeout(() => {
        filter();
        remember();
    }));
    form.addEventListener('submit', (event) => event.preventDefault());
    window.addEventListener('hashchange', readAddress);
    form.hidden = false;
    readAddress();
})();
