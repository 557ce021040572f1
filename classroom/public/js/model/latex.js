// The LaTeX of a school lesson as a tree of MathML: [name, ...children], where a child is a tree or a text. What is
// not known stays readable: an unknown command is shown by its name.

const SYMBOLS = {
  alpha: 'α', beta: 'β', gamma: 'γ', delta: 'δ', epsilon: 'ε', theta: 'θ', lambda: 'λ', mu: 'μ', pi: 'π', rho: 'ρ',
  sigma: 'σ', tau: 'τ', phi: 'φ', omega: 'ω', Delta: 'Δ', Sigma: 'Σ', Omega: 'Ω', infty: '∞',
};

const OPERATORS = {
  cdot: '·', times: '×', div: '÷', pm: '±', le: '≤', leq: '≤', ge: '≥', geq: '≥', ne: '≠', neq: '≠', approx: '≈',
  to: '→', rightarrow: '→', Rightarrow: '⇒', in: '∈', cup: '∪', cap: '∩', sum: '∑', int: '∫', circ: '∘',
  '{': '{', '}': '}', '%': '%', '|': '‖',
};

const SPACES = { ',': '0.17em', ':': '0.22em', ';': '0.28em', ' ': '0.25em', quad: '1em' };
const FUNCTIONS = ['sin', 'cos', 'tan', 'log', 'ln', 'lim', 'exp', 'max', 'min'];
const IGNORED = ['left', 'right', 'displaystyle'];

const MAX_LENGTH = 2000;
const MAX_DEPTH = 40;

// Three letters or more make a word, as in a sentence that holds a formula; fewer are variables.
const TOKEN = /\\([A-Za-z]+|.)|(\d+(?:[.,]\d+)*)|(\p{L}{3,}(?:\s+\p{L}{2,})*|\p{L}\p{M}*)|(\s+)|(.)/gsu;

function tokensOf(latex) {
  return Array.from(latex.matchAll(TOKEN), ([whole, command, number, letters, space]) => {
    if (command !== undefined) return { kind: 'command', text: command };
    if (number !== undefined) return { kind: 'number', text: number };
    if (letters !== undefined) return { kind: 'letters', text: letters };
    return { kind: space === undefined ? 'other' : 'space', text: whole };
  });
}

const row = (nodes) => (nodes.length === 1 ? nodes[0] : ['mrow', ...nodes]);

class Parser {
  #tokens;
  #at = 0;
  #depth = 0;

  constructor(latex) {
    this.#tokens = tokensOf(latex);
  }

  all() {
    const nodes = [];
    while (this.#at < this.#tokens.length) {
      nodes.push(...this.#until('}'));
      // A brace that closes nothing is shown as it is.
      if (this.#at < this.#tokens.length) nodes.push(['mo', this.#tokens[this.#at++].text]);
    }
    return row(nodes);
  }

  // Nodes up to the text that ends them, which is left where it is, or to the end.
  #until(end) {
    if ((this.#depth += 1) > MAX_DEPTH) throw new Error('nested too deeply');
    const nodes = [];
    while (this.#at < this.#tokens.length && !this.#isAt(end)) {
      const node = this.#scripted();
      if (node) nodes.push(node);
    }
    this.#depth -= 1;
    return nodes;
  }

  #isAt(text) {
    const token = this.#tokens[this.#at];
    return token?.kind === 'other' && token.text === text;
  }

  #skipSpace() {
    while (this.#tokens[this.#at]?.kind === 'space') this.#at += 1;
  }

  #scripted() {
    const base = this.#isAt('^') || this.#isAt('_') ? ['mrow'] : this.#atom();
    const scripts = {};
    for (;;) {
      const mark = ['^', '_'].find((one) => this.#isAt(one) && !(one in scripts));
      if (!mark) break;
      this.#at += 1;
      scripts[mark] = this.#argument();
    }
    const { '^': above, _: below } = scripts;
    if (above && below) return ['msubsup', base ?? ['mrow'], below, above];
    if (above) return ['msup', base ?? ['mrow'], above];
    return below ? ['msub', base ?? ['mrow'], below] : base;
  }

  // A group in braces or a single atom; of a number only its first digit, as in x^12.
  #argument() {
    this.#skipSpace();
    const token = this.#tokens[this.#at];
    if (!token || this.#isAt('}')) return ['mrow'];
    if (token.kind === 'number' && token.text.length > 1) {
      this.#tokens[this.#at] = { kind: 'number', text: token.text.slice(1) };
      return ['mn', token.text[0]];
    }
    return this.#atom() ?? ['mrow'];
  }

  #group(open, close) {
    this.#at += open.length;
    const nodes = this.#until(close);
    if (this.#isAt(close)) this.#at += 1;
    return row(nodes);
  }

  #atom() {
    if (this.#isAt('{')) return this.#group('{', '}');
    const { kind, text } = this.#tokens[this.#at++];
    switch (kind) {
      case 'command': return this.#command(text);
      case 'number': return ['mn', text];
      case 'letters': return text.length > 2 ? ['mtext', `\u00a0${text}\u00a0`] : ['mi', text];
      case 'space': return null;
      default: return ['mo', text === '-' ? '\u2212' : text];
    }
  }

  #command(name) {
    if (name === 'frac') return ['mfrac', this.#argument(), this.#argument()];
    if (name === 'sqrt') return this.#root();
    if (name === 'text' || name === 'mathrm') return ['mtext', this.#plain()];
    if (Object.hasOwn(SYMBOLS, name)) return ['mi', SYMBOLS[name]];
    if (Object.hasOwn(OPERATORS, name)) return ['mo', OPERATORS[name]];
    if (Object.hasOwn(SPACES, name)) return ['mspace', { width: SPACES[name] }];
    if (FUNCTIONS.includes(name)) return ['mi', name];
    return IGNORED.includes(name) ? null : ['mtext', `\\${name}`];
  }

  #root() {
    if (!this.#isAt('[')) return ['msqrt', this.#argument()];
    const degree = this.#group('[', ']');
    return ['mroot', this.#argument(), degree];
  }

  // What stands in braces, word for word.
  #plain() {
    this.#skipSpace();
    if (!this.#isAt('{')) return '';
    let text = '';
    this.#at += 1;
    while (this.#at < this.#tokens.length && !this.#isAt('}')) {
      const token = this.#tokens[this.#at++];
      text += token.kind === 'command' ? `\\${token.text}` : token.text;
    }
    this.#at += 1;
    return text;
  }
}

/** The tree of a formula; null when it is too long or nested too deeply. */
export function parseLatex(latex) {
  if (latex.length > MAX_LENGTH) return null;
  try {
    return new Parser(latex).all();
  } catch {
    return null;
  }
}

const START = '<span class="mathquill-embedded-latex">';
const END = '</span>';

/** The parts of a text: {text} and {latex}. The marks round a formula are exactly these two, and no markup. */
export function partsOf(text, isMath) {
  if (!text.includes(START)) return [isMath ? { latex: text } : { text }];
  const [first, ...rest] = text.split(START);
  const parts = [{ text: first }];
  for (const one of rest) {
    const end = one.indexOf(END);
    if (end < 0) parts.push({ latex: one });
    else parts.push({ latex: one.slice(0, end) }, { text: one.slice(end + END.length) });
  }
  return parts.filter(({ text: plain }) => plain !== '');
}
