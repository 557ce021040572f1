// The learner's screens other than the question. Each is {element, update()}.

import { inWords } from '../model/answer.js';
import { cardPictures } from '../model/picture.js';
import { promptFor } from '../model/prompts.js';
import { textOf } from '../model/text.js';
import { button, el, title } from '../ui/dom.js';
import { picture } from '../ui/picture.js';
import { QuestionScreen } from './question-screen.js';

const still = (...children) => ({ element: el('article', { class: 'sheet' }, ...children), update: () => {} });

const leaf = () => el('div', { class: 'leaf', 'aria-hidden': 'true' });

const waiting = () => still(leaf(), title('You are in'), el('p', {}, 'What your teacher sends will show here.'));

function coming(lesson) {
  const { assessment } = lesson;
  return still(leaf(), title(`Question ${assessment.current} is on its way`),
    el('div', { class: 'actions' }, button('Ask again', () => lesson.askAgain(), { class: 'secondary' })));
}

function stopped(lesson) {
  const { activity } = lesson;
  const { answer, draft } = activity;
  const labelled = (label, one) => [el('p', { class: 'said-label' }, label), el('p', { class: 'said' }, inWords(activity, one))];
  const said = answer ? labelled('Your answer', answer) : [el('p', {}, 'You have not answered it.')];
  if (draft && inWords(activity, draft).trim() !== '') said.push(...labelled('Begun, and not sent', draft));
  const goOn = button('Next question', () => lesson.goOn(), { class: 'primary', hidden: !lesson.mayGoOn });
  return still(title('This question is closed'), ...said, el('div', { class: 'actions' }, goOn));
}

function card(lesson) {
  const pictures = cardPictures(lesson.card);
  const shown = pictures.length > 0 ? pictures.map((one) => picture(one, 'Card from your teacher'))
    : [el('p', {}, 'There is nothing on this card.')];
  const back = button('Back to the question', () => lesson.backToQuestion(), { class: 'secondary' });
  const update = () => { back.hidden = !lesson.activity || lesson.activity.closed; };
  update();
  return {
    element: el('article', { class: 'sheet card' }, title('Card'), ...shown, el('div', { class: 'actions' }, back)),
    update,
  };
}

function results(lesson) {
  const { text, bars } = lesson.results;
  const most = Math.max(1, ...bars.map(({ count }) => count));
  const rows = bars.map(({ title: name, count, isCorrect }) => el('li', { class: isCorrect ? 'result right' : 'result' },
    el('span', { class: 'result-title' }, name), isCorrect && el('span', { class: 'result-right' }, 'right'),
    el('span', { class: 'result-count' }, String(count)), el('progress', { value: count, max: most, 'aria-hidden': 'true' })));
  const back = button('Back to the question', () => lesson.backToQuestion(), { class: 'secondary' });
  const goOn = button('Next question', () => lesson.goOn(), { class: 'primary' });
  const update = () => {
    back.hidden = !lesson.activity || lesson.activity.closed;
    goOn.hidden = !back.hidden || !lesson.mayGoOn;
  };
  update();
  return {
    element: el('article', { class: 'sheet' }, title('How it came out'), ...text.split('\n').map((line) => el('p', {}, line)),
      el('ul', { class: 'results' }, ...rows), el('div', { class: 'actions' }, back, goOn)),
    update,
  };
}

const review = (lesson) => still(el('p', { class: 'kind' }, 'Review'), title(lesson.review || 'Look at your answers again'),
  el('p', { hidden: !lesson.mayNavigate }, 'Go back to any question above.'));

function summary(assessment) {
  const rows = Array.from({ length: assessment.count }, (_, i) => {
    const activity = assessment.at(i + 1);
    const asked = activity ? textOf(activity.document.instructions).trim() || promptFor(activity) : '';
    return el('tr', {}, el('th', { scope: 'row' }, String(i + 1)), el('td', {}, asked),
      el('td', {}, activity?.answer ? inWords(activity, activity.answer) : 'Not answered'));
  });
  const head = el('tr', {}, ...['No.', 'Question', 'Your answer'].map((name) => el('th', { scope: 'col' }, name)));
  return el('table', { class: 'summary' }, el('thead', {}, head), el('tbody', {}, ...rows));
}

const score = ({ answered, count }) => el('p', {}, `You have answered ${answered} of ${count}.`);

const finished = ({ assessment }) => still(leaf(), title(assessment.timeUp ? 'Time is up' : 'That was the last question'),
  score(assessment), assessment.showsSummary && summary(assessment));

const over = ({ assessment }) => still(leaf(), title('The assessment is over'), score(assessment),
  assessment.showsSummary && summary(assessment));

// How a screen is built, and what it is of: when that is another one, so is the screen.
const SCREENS = {
  waiting: { build: waiting, of: () => null, name: 'Waiting' },
  coming: { build: coming, of: ({ assessment }) => assessment.current, name: 'Waiting' },
  question: { build: (lesson) => new QuestionScreen(lesson), of: ({ activity }) => activity, name: 'Question' },
  stopped: { build: stopped, of: ({ activity }) => activity, name: 'Closed' },
  card: { build: card, of: (lesson) => lesson.card, name: 'Card' },
  review: { build: review, of: (lesson) => lesson.review, name: 'Review' },
  results: { build: results, of: (lesson) => lesson.results, name: 'Results' },
  finished: { build: finished, of: ({ assessment }) => assessment, name: 'Finished' },
  over: { build: over, of: ({ assessment }) => assessment, name: 'Finished' },
};

export const screenOf = (lesson) => SCREENS[lesson.shows];
