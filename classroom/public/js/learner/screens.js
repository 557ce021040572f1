// The learner's screens other than the question. Each is {element, update()}.

import { inWords } from '../model/answer.js';
import { cardPictures } from '../model/picture.js';
import { promptFor } from '../model/prompts.js';
import { textOf } from '../model/text.js';
import { button, el, title } from '../ui/dom.js';
import { picture } from '../ui/picture.js';
import { t } from '../words/words.js';
import { QuestionScreen } from './question-screen.js';

const still = (...children) => ({ element: el('article', { class: 'sheet' }, ...children), update: () => {} });

const leaf = () => el('div', { class: 'leaf', 'aria-hidden': 'true' });

const waiting = () => still(leaf(), title(t('You are in')), el('p', {}, t('What your teacher sends will show here.')));

function coming(lesson) {
  const { assessment } = lesson;
  return still(leaf(), title(t('Question %1 is on its way', assessment.current)),
    el('div', { class: 'actions' }, button(t('Ask again'), () => lesson.askAgain(), { class: 'secondary' })));
}

function stopped(lesson) {
  const { activity } = lesson;
  const { answer, draft } = activity;
  const labelled = (label, one) => [el('p', { class: 'said-label' }, label), el('p', { class: 'said' }, inWords(activity, one))];
  const said = answer ? labelled(t('Your answer'), answer) : [el('p', {}, t('You have not answered it.'))];
  if (draft && inWords(activity, draft).trim() !== '') said.push(...labelled(t('Begun, and not sent'), draft));
  const goOn = button(t('Next question'), () => lesson.goOn(), { class: 'primary', hidden: !lesson.mayGoOn });
  return still(title(t('This question is closed')), ...said, el('div', { class: 'actions' }, goOn));
}

function card(lesson) {
  const pictures = cardPictures(lesson.card);
  const shown = pictures.length > 0 ? pictures.map((one) => picture(one, t('Card from your teacher')))
    : [el('p', {}, t('There is nothing on this card.'))];
  const back = button(t('Back to the question'), () => lesson.backToQuestion(), { class: 'secondary' });
  const update = () => { back.hidden = !lesson.activity || lesson.activity.closed; };
  update();
  return {
    element: el('article', { class: 'sheet card' }, title(t('Card')), ...shown, el('div', { class: 'actions' }, back)),
    update,
  };
}

function results(lesson) {
  const { text, bars } = lesson.results;
  const most = Math.max(1, ...bars.map(({ count }) => count));
  const rows = bars.map(({ title: name, count, isCorrect }) => el('li', { class: isCorrect ? 'result right' : 'result' },
    el('span', { class: 'result-title' }, name), isCorrect && el('span', { class: 'result-right' }, t('right')),
    el('span', { class: 'result-count' }, String(count)), el('progress', { value: count, max: most, 'aria-hidden': 'true' })));
  const back = button(t('Back to the question'), () => lesson.backToQuestion(), { class: 'secondary' });
  const goOn = button(t('Next question'), () => lesson.goOn(), { class: 'primary' });
  const update = () => {
    back.hidden = !lesson.activity || lesson.activity.closed;
    goOn.hidden = !back.hidden || !lesson.mayGoOn;
  };
  update();
  return {
    element: el('article', { class: 'sheet' }, title(t('How it came out')), ...text.split('\n').map((line) => el('p', {}, line)),
      el('ul', { class: 'results' }, ...rows), el('div', { class: 'actions' }, back, goOn)),
    update,
  };
}

const review = (lesson) => still(el('p', { class: 'kind' }, t('Review')), title(lesson.review || t('Look at your answers again')),
  el('p', { hidden: !lesson.mayNavigate }, t('Go back to any question above.')));

function summary(assessment) {
  const rows = Array.from({ length: assessment.count }, (_, i) => {
    const activity = assessment.at(i + 1);
    const asked = activity ? textOf(activity.document.instructions).trim() || promptFor(activity) : '';
    return el('tr', {}, el('th', { scope: 'row' }, String(i + 1)), el('td', {}, asked),
      el('td', {}, activity?.answer ? inWords(activity, activity.answer) : t('Not answered')));
  });
  const head = el('tr', {}, ...[t('No.'), t('Question'), t('Your answer')].map((name) => el('th', { scope: 'col' }, name)));
  return el('table', { class: 'summary' }, el('thead', {}, head), el('tbody', {}, ...rows));
}

const score = ({ answered, count }) => el('p', {}, t('You have answered %1 of %2.', answered, count));

const finished = ({ assessment }) => still(leaf(), title(assessment.timeUp ? t('Time is up') : t('That was the last question')),
  score(assessment), assessment.showsSummary && summary(assessment));

const over = ({ assessment }) => still(leaf(), title(t('The assessment is over')), score(assessment),
  assessment.showsSummary && summary(assessment));

// How a screen is built, and what it is of: when that is another one, so is the screen.
const SCREENS = {
  waiting: { build: waiting, of: () => null, name: t('Waiting') },
  coming: { build: coming, of: ({ assessment }) => assessment.current, name: t('Waiting') },
  question: { build: (lesson) => new QuestionScreen(lesson), of: ({ activity }) => activity, name: t('Question') },
  stopped: { build: stopped, of: ({ activity }) => activity, name: t('Closed') },
  card: { build: card, of: (lesson) => lesson.card, name: t('Card') },
  review: { build: review, of: (lesson) => lesson.review, name: t('Review') },
  results: { build: results, of: (lesson) => lesson.results, name: t('Results') },
  finished: { build: finished, of: ({ assessment }) => assessment, name: t('Finished') },
  over: { build: over, of: ({ assessment }) => assessment, name: t('Finished') },
};

export const screenOf = (lesson) => SCREENS[lesson.shows];
