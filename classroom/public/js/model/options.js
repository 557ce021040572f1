// The options that a learner chooses from, of a question and of a poll document alike.

import { labelOf } from './ordinals.js';
import { listOf, textOf } from './text.js';

// For questions whose options were left out; what is chosen is then answered as a text.
const STANDARD = {
  'true-false': ['TRUE', 'FALSE'],
  'yes-no-other': ['YES', 'NO'],
  multiple: ['A', 'B', 'C', 'D'],
  scale: ['1', '2', '3', '4', '5'],
  sort: ['A', 'B'],
};

const bySequence = (a, b) => (Number(a?.displaySeqNumber) || 0) - (Number(b?.displaySeqNumber) || 0);

function sourcesOf({ kind, document }) {
  if (kind === 'poll') return listOf(document.metadata?.options).map((id) => ({ id }));
  const given = [...listOf(document.activityOptions)].sort(bySequence);
  if (given.length > 0 || !Object.hasOwn(STANDARD, document.type)) return given;
  return STANDARD[document.type].map((id) => ({ id, optionText: /^[A-D\d]$/.test(id) ? '' : id }));
}

/** All options of an activity: {id, symbol, text, math}. */
export function optionsOf(activity) {
  const { type, metadata } = activity.document;
  const sources = sourcesOf(activity);
  const scheme = textOf(metadata?.ordinalType);
  return sources.map((source, i) => ({
    id: textOf(source?.id),
    math: source?.math === true,
    ...labelOf({ ...source }, { type, scheme, i, count: sources.length }),
  }));
}

export const hasOwnOptions = ({ kind, document }) => (
  kind === 'poll' ? listOf(document.metadata?.options) : listOf(document.activityOptions)).length > 0;

/** An option in a few words, for a summary. */
export const nameOf = ({ symbol, text }) => (symbol && text ? `${symbol} ${text}` : symbol || text);
