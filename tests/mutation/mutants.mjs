// The places of a C++ source that a mutation run can change, each with what it becomes.

/** The text with comments, literals and preprocessor lines blanked, of the same length. */
function masked(text) {
    const blank = (part) => part.replace(/[^\n]/g, ' ');
    return text
        .replace(/\/\/[^\n]*|\/\*[^]*?\*\/|R"(\w*)\([^]*?\)\1"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])'/g, (part) =>
            (part.startsWith('/') ? blank(part) : '"'.repeat(part.length)).replace(/"/g, (c, i) => part[i] === '\n' ? '\n' : c))
        .replace(/^[ \t]*#(?:[^\n]*\\\n)*[^\n]*/gm, blank);
}

const relations = { '==': '!=', '!=': '==', '<': '<=', '<=': '<', '>': '>=', '>=': '>', '&&': '||', '||': '&&' };

/** Where the bracket that opens at \p at closes. */
function closing(text, at) {
    let depth = 0;
    for (let i = at; i < text.length; ++i) {
        depth += '([{'.includes(text[i]) ? 1 : ')]}'.includes(text[i]) ? -1 : 0;
        if (depth === 0)
            return i;
    }
    return text.length;
}

/** All places of the file in the order of their kinds: { file, line, lastLine, offset, kind, before, after, text, nth, context }. */
export function candidates(file, text) {
    const mask = masked(text);
    const found = [];
    const add = (kind, offset, before, after) => found.push({ kind, offset, before, after });
    const each = (expression, use) => {
        for (const match of mask.matchAll(expression))
            use(match, match.index);
    };

    each(/(?<= )(==|!=|<=|>=|<|>|&&|\|\|)(?= )/g, ([op], at) => add('operator', at, op, relations[op]));
    each(/(?<=[\w)\]] )([+-])(?= [\w(])/g, ([op], at) => add('operator', at, op, op === '+' ? '-' : '+'));
    each(/\b(?:if|while) \(/g, ([head], at) => {
        const open = at + head.length - 1;
        const condition = text.slice(open + 1, closing(mask, open));
        if (!/;|^\s*(const )?\w[\w:<>*& ]* \w+ = /.test(condition))
            add('condition', open + 1, condition, `!(${condition})`);
    });
    each(/(?<=[ (,=!-])(\d+)(?=[ ),;])|\b(true|false)\b/g, ([value], at) =>
        add('constant', at, value, { true: 'false', false: 'true' }[value] ?? String(Number(value) + 1)));
    each(/\breturn (?!true;|false;)[^;{}]+;/g, ([whole], at) =>
        add('return', at, text.slice(at, at + whole.length), 'return {};'));
    each(/(?<=[;{})]\s*\n|else\n|\/\/ *\n)( +)((?!return\b|case\b|if\b|while\b|for\b|else\b|using\b|typedef\b|static_assert\b|throw\b|Q_OBJECT|Q_DISABLE)(?:Q_EMIT |delete |emit )?[*(]*[\w:]+(?:->|\.|\(|\[| [-+|&]?= |\+\+|--|<[\w:*]+>\()[^;{}]*(?:\{[^{}]*\}[^;{}]*)*;)/g,
        ([, indent, statement], at) => add('statement', at + indent.length, text.slice(at + indent.length, at + indent.length + statement.length), ';'));

    const seen = new Map();
    const lineOf = (at) => text.slice(0, at).split('\n').length;
    const lines = text.split('\n');
    return found.map((place) => {
        const line = lineOf(place.offset);
        const own = lines[line - 1].trim();
        const key = `${place.kind} ${line}`;
        seen.set(key, (seen.get(key) ?? -1) + 1);
        const context = `${lines[line - 2]?.trim()}|${lines[line]?.trim()}`;
        return { file, line, lastLine: lineOf(place.offset + place.before.length), ...place, text: own, nth: seen.get(key), context };
    });
}
