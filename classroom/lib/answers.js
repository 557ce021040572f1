// What a simulated learner answers. Deterministic: the same learner gives the same question the same
// answer, so that a test can work out what the presenter has to receive.

const WORDS = ['water', 'photosynthesis', 'Öl', 'свет', '葉', 'café', '🌱', 'oxygen'];
const FORMULAS = ['x^2', '\\frac{1}{2}', '\\sqrt{a+b}', '2\\pi r', 'e^{i\\pi}+1=0'];
const MAX_DECIMALS = 6;

// The answers to questions whose options were left out.
const WITHOUT_OPTIONS = {
  'true-false': ['TRUE', 'FALSE'],
  'yes-no-other': ['YES', 'NO'],
  multiple: ['A', 'B', 'C', 'D'],
  scale: ['1', '2', '3', '4', '5'],
  sort: ['AB', 'BA'],
};

const pickFrom = (list, seed) => list[seed % list.length];

/** A number from 0 up that depends on the learner and on the question (32-bit FNV-1a). */
export function seedOf(index, id) {
  let hash = 0x811c9dc5;
  for (const byte of Buffer.from(`${index}:${id}`)) hash = Math.imul(hash ^ byte, 0x01000193) >>> 0;
  // The low bits of FNV are poor, and it is them that a choice among two or four uses.
  return (hash ^ (hash >>> 15)) >>> 0;
}

/** The simulated thinking time; one of few values, so that equal answers are equal payloads. */
export const responseTime = (seed, answerAfter = 0) => answerAfter + 250 * (seed % 8);

function numberText(seed, decimals = 0) {
  const value = (seed % 12) + (seed % 4) / 4;
  return value.toFixed(Math.min(Math.max(Math.trunc(decimals), 0), MAX_DECIMALS));
}

function wordText(seed, maxChars = 0) {
  const word = pickFrom(WORDS, seed);
  return maxChars > 0 ? [...word].slice(0, maxChars).join('') : word;
}

// `count` options that follow each other from a place that the seed gives, round the end if need be.
function rotated(options, seed, count) {
  return Array.from({ length: count }, (_, i) => (seed + i) % options.length);
}

const PICKED = {
  multiple: (options, seed, { numberOfCorrectOptions = 1 }) => {
    const count = Math.min(Math.max(numberOfCorrectOptions, 1), options.length);
    return rotated(options, seed, count).sort((a, b) => a - b);
  },
  sort: (options, seed) => rotated(options, seed, options.length),
};

const pickOne = (options, seed) => rotated(options, seed, 1);

const WRITTEN = {
  text: (seed, { maxChars }) => wordText(seed, maxChars),
  number: (seed, { noOfDecimals }) => numberText(seed, noOfDecimals),
  'math formula': (seed) => pickFrom(FORMULAS, seed),
};

/** The answer's own members for a "questionStart" document: {answer} or {optionAnswers}. It goes by the question's id, or by the key. */
export function answerQuestion(question, index, key = question.id) {
  const seed = seedOf(index, key);
  const options = question.activityOptions ?? [];
  if (options.length > 0) {
    const chosen = (PICKED[question.type] ?? pickOne)(options, seed, question);
    return { optionAnswers: chosen.map((i) => ({ activityOptionId: options[i].id })) };
  }
  if (question.type in WITHOUT_OPTIONS) return { answer: pickFrom(WITHOUT_OPTIONS[question.type], seed) };
  return { answer: (WRITTEN[question.type] ?? WRITTEN.text)(seed, question) };
}

/** The answer to a question as a presenter gets it: the ids of the options follow each other without anything. */
export function answerInWords(question, index, key = question.id) {
  const { answer = '', optionAnswers = [] } = answerQuestion(question, index, key);
  return answer + optionAnswers.map(({ activityOptionId }) => activityOptionId).join('');
}

/** The "blob" for a "poll" document: a list of picked options, or typed input where there are none. */
export function answerPoll(poll, index, key = poll.id) {
  const seed = seedOf(index, key);
  const options = poll.metadata?.options ?? [];
  if (options.length === 0) return { input: wordText(seed) };
  const count = 1 + (seed % Math.min(2, options.length));
  return { pick: rotated(options, seed, count).sort((a, b) => a - b).map((i) => String(options[i])) };
}

function picked(text, ids) {
  const picks = ids.includes(text) ? [text] : text.split(',').map((id) => id.trim());
  const stranger = picks.find((id) => !ids.includes(id));
  if (stranger !== undefined) throw new Error(`not one of the options ${ids.join(' ')}: ${stranger}`);
  return picks;
}

/** What answerQuestion() gives, for an answer that somebody else has chosen: words, or the ids of options with commas between. */
export function chosenFor({ activityOptions: options = [] }, text) {
  if (options.length === 0) return { answer: text };
  return { optionAnswers: picked(text, options.map(({ id }) => id)).map((activityOptionId) => ({ activityOptionId })) };
}

/** The same for answerPoll(). */
export function chosenForPoll({ metadata }, text) {
  const options = metadata?.options ?? [];
  return options.length === 0 ? { input: text } : { pick: picked(text, options.map(String)) };
}
