// What is asked when a question comes without words of its own: a poll that the teacher has put aloud.

import { hasOwnOptions } from './options.js';

const PROMPTS = {
  'true-false': 'True or false?',
  'yes-no-other': 'Yes or no?',
  multiple: 'Which one is it?',
  scale: 'Where on the scale?',
  sort: 'Put these in order',
  text: 'Write your answer',
  'word-seed': 'Share a word',
  number: 'Enter a number',
  creative: 'Note down your idea',
  'math formula': 'Write a formula',
};

const NAMES = {
  'true-false': 'True or false',
  'yes-no-other': 'Yes or no',
  multiple: 'Choice',
  scale: 'Scale',
  sort: 'Order',
  text: 'Text',
  'word-seed': 'Words',
  number: 'Number',
  creative: 'Idea',
  'math formula': 'Formula',
};

export function promptFor({ kind, document }) {
  const { type, numberOfCorrectOptions } = document;
  if (kind === 'poll' && hasOwnOptions({ kind, document })) return 'Which do you pick?';
  if (type === 'multiple' && numberOfCorrectOptions !== 1) return 'Which of these apply?';
  return Object.hasOwn(PROMPTS, type) ? PROMPTS[type] : 'What do you say?';
}

export const nameOfType = ({ type }) => (Object.hasOwn(NAMES, type) ? NAMES[type] : 'Question');
