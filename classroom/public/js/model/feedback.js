// What a presenter has to say about an answer, when it sends a question back with it.

import { t } from '../words/words.js';
import { nameOf, optionsOf } from './options.js';
import { isObject, listOf, textOf } from './text.js';

const idOf = (one) => textOf(isObject(one) ? one.activityOptionId ?? one.id : one);

function correctOptions(activity) {
  const ids = listOf(activity.document.feedBack.correctOptions).map(idOf);
  return optionsOf(activity).flatMap(({ id }, i) => (ids.includes(id) ? [i] : []));
}

function correctInWords(activity) {
  const options = optionsOf(activity);
  const names = correctOptions(activity).map((i) => nameOf(options[i]));
  return names.length > 0 ? names.join(', ') : textOf(activity.document.feedBack.correctAnswer);
}

function isCorrect({ document: { feedBack }, answer }, correct) {
  if (answer.picked === undefined) return answer.text === textOf(feedBack.correctAnswer);
  return String([...answer.picked].sort((a, b) => a - b)) === String(correct);
}

/** Sentences about the answer; none when nothing is to be told. */
export function feedbackOf(activity) {
  const { feedBack } = activity.document;
  if (!activity.wasAnsweredBefore || !isObject(feedBack)) return [];
  const lines = [];
  if (feedBack.showFeedback === true) {
    const right = isCorrect(activity, correctOptions(activity));
    lines.push(textOf(right ? feedBack.correctFeedback : feedBack.inCorrectFeedback));
  }
  const correct = feedBack.showCorrectAnswer === true ? correctInWords(activity) : '';
  if (correct) lines.push(t('The correct answer: %1', correct));
  return lines.filter((line) => line !== '');
}
