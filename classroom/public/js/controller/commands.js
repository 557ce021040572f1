// The commands of the remote control, as the presenter gets them, in the groups in which they are shown. No answer belongs to a
// command: "sign" is the type of message that shows that something came of it, and "outcome" what that says, or nothing.

import { t } from '../words/words.js';

const cardOutcome = (value, { card: { current, total } }) => {
  if (total === 0) return t('There are no cards');
  if (total > 1 && current === total) return t('Card %1 of %2, the last', current, total);
  if (total > 1 && current === 1) return t('Card %1 of %2, the first', current, total);
  return t('Card %1 of %2', current, total);
};

export const GROUPS = [
  {
    name: t('Cards'),
    commands: [
      {
        type: 'previousCard', label: t('Previous'), said: t('Previous card'), kind: 'large back', needsCards: true,
        sign: 'currentCard', outcome: cardOutcome,
      },
      {
        type: 'nextCard', label: t('Next'), said: t('Next card'), kind: 'large forth', needsCards: true,
        sign: 'currentCard', outcome: cardOutcome,
      },
      {
        type: 'pushCurrentCard', label: t('Push this card to the learners'), said: t('Push card'), kind: 'wide', needsCards: true,
        sign: 'showCard', outcome: () => t('The card is shown'),
      },
    ],
  },
  {
    name: t('Question'),
    commands: [
      { type: 'pause', label: t('Pause'), said: t('Pause'), sign: 'pause', outcome: () => t('Paused') },
      { type: 'resume', label: t('Resume'), said: t('Resume'), sign: 'resume', outcome: () => t('Resumed') },
    ],
  },
  {
    name: t('Devices'),
    commands: [
      {
        type: 'lockAll', label: t('Lock all'), said: t('Lock all'),
        sign: 'dialogShow', outcome: ({ isDismissible }) => !isDismissible && t('All devices are locked'),
      },
      {
        type: 'unlockAll', label: t('Unlock all'), said: t('Unlock all'),
        sign: 'dialogShow', outcome: ({ isDismissible }) => isDismissible && t('All devices are unlocked'),
      },
    ],
  },
  {
    name: t('Presenter'),
    commands: [
      {
        type: 'presenterActive', label: t('Is the presenter there?'), said: t('Question to the presenter'), kind: 'wide', asksPresence: true,
        sign: 'presenterIsActive', outcome: () => t('The presenter is there'),
      },
      {
        type: 'requestLessonInfo', label: t('Ask for the lesson'), said: t('Request for the lesson’s name'),
        sign: 'currentLesson', outcome: (value, { lesson }) => (lesson.name ? t('The lesson is “%1”', lesson.name) : t('The lesson has no name')),
      },
      {
        type: 'requestLesson', label: t('Ask for its cards'), said: t('Request for the lesson’s cards'),
        sign: 'currentCard', outcome: cardOutcome,
      },
    ],
  },
];

/** Its outcome is the end of the page. */
export const STOP = { type: 'stopSession', label: t('End the session'), said: t('End of the session') };

// `before`: the card when it was sent.
export const ADD_IMAGE = {
  type: 'addImageCard', label: t('Add a picture as a card'), said: t('Picture'),
  sign: 'currentCard',
  outcome: (value, { card }, before) => (card.total > (before?.total ?? 0) ? t('The picture is the last card') : t('The picture was not taken')),
};

/** What is asked for without being told, whenever the connection has been made. */
export const ASKED_AT_ONCE = ['presenterActive', 'requestLessonInfo', 'requestLesson'];
