// Answers, in the one form in which the pages hold them: {picked: [indexes of options]} or {text}.

import { hasOwnOptions, nameOf, optionsOf } from './options.js';
import { listOf, textOf } from './text.js';

function questionResponse(activity, { picked, text }) {
  if (picked === undefined) return { answer: text };
  const ids = optionsOf(activity).map(({ id }) => id);
  const chosen = picked.map((i) => ids[i]);
  if (!hasOwnOptions(activity)) return { answer: chosen.join('') };
  return { optionAnswers: chosen.map((activityOptionId) => ({ activityOptionId })) };
}

function pollResponse(activity, { picked, text }) {
  if (picked === undefined) return { input: text };
  const options = optionsOf(activity);
  return { pick: picked.map((i) => options[i].id) };
}

/** The message with which an answer goes to the presenter: {type, value}. Times are in milliseconds. */
export function responseTo(activity, answer, responseTime, studentAssessmentToken) {
  const { id, questionSetMode } = activity.document;
  const common = { responseTime, studentAssessmentToken };
  if (activity.kind === 'poll') {
    return { type: 'pollResponse', value: { pollId: id, blob: pollResponse(activity, answer), ...common } };
  }
  const value = { questionId: id, questionSetMode, ...questionResponse(activity, answer), ...common };
  return { type: 'questionResponse', value };
}

const PRIOR = 99;

function indexesOf(optionAnswers, options) {
  const picked = [];
  for (const one of optionAnswers) {
    const i = options.findIndex(({ id }, at) => id === textOf(one?.activityOptionId) && !picked.includes(at));
    if (i >= 0) picked.push(i);
  }
  return picked;
}

/** What the learner has answered before, when the presenter says so; else null. */
export function priorAnswer(activity) {
  const feedback = activity.document.feedBack;
  if (feedback?.numberOfRetriesRemaining !== PRIOR) return null;
  const options = optionsOf(activity);
  const picked = indexesOf(listOf(feedback.optionAnswers), options);
  if (picked.length > 0) return { picked };
  if (options.length > 0 || textOf(feedback.answer) === '') return null;
  return { text: textOf(feedback.answer) };
}

/** An answer in words. */
export function inWords(activity, { picked, text }) {
  if (picked === undefined) return text;
  const options = optionsOf(activity);
  return picked.map((i) => nameOf(options[i])).join(', ');
}
