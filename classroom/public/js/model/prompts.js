// What is asked when a question comes without words of its own: a poll that the teacher has put aloud.

import { t } from '../words/words.js';
import { hasOwnOptions } from './options.js';

const PROMPTS = {
  'true-false': t('True or false?'),
  'yes-no-other': t('Yes or no?'),
  multiple: t('Which one is it?'),
  scale: t('Where on the scale?'),
  sort: t('Put these in order'),
  text: t('Write your answer'),
  'word-seed': t('Share a word'),
  number: t('Enter a number'),
  creative: t('Note down your idea'),
  'math formula': t('Write a formula'),
};

const NAMES = {
  'true-false': t('True or false'),
  'yes-no-other': t('Yes or no'),
  multiple: t('Choice'),
  scale: t('Scale'),
  sort: t('Order'),
  text: t('Text'),
  'word-seed': t('Words'),
  number: t('Number'),
  creative: t('Idea'),
  'math formula': t('Formula'),
};

export function promptFor({ kind, document }) {
  const { type, numberOfCorrectOptions } = document;
  if (kind === 'poll' && hasOwnOptions({ kind, document })) return t('Which do you pick?');
  if (type === 'multiple' && numberOfCorrectOptions !== 1) return t('Which of these apply?');
  return Object.hasOwn(PROMPTS, type) ? PROMPTS[type] : t('What do you say?');
}

export const nameOfType = ({ type }) => (Object.hasOwn(NAMES, type) ? NAMES[type] : t('Question'));
