import { el } from './dom.js';
import { parseLatex, partsOf } from '../model/latex.js';

const MATHML = 'http://www.w3.org/1998/Math/MathML';

function build([name, ...children]) {
  const element = document.createElementNS(MATHML, name);
  for (const child of children) {
    if (typeof child === 'string') element.append(child);
    else if (Array.isArray(child)) element.append(build(child));
    else for (const [attribute, value] of Object.entries(child)) element.setAttribute(attribute, value);
  }
  return element;
}

/** A formula to look at; its own text where it cannot be read. */
export function formula(latex) {
  const tree = parseLatex(latex);
  return tree ? build(['math', tree]) : el('code', {}, latex);
}

/** A text in which formulas may be embedded, or which is one: as nodes to append. */
export const richText = (text, isMath = false) => partsOf(text, isMath).map(
  (part) => (part.latex === undefined ? document.createTextNode(part.text) : formula(part.latex)));
