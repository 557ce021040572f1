// The commands of the remote control, as the presenter gets them, in the groups in which they are shown. No answer belongs to a
// command: "sign" is the type of message that shows that something came of it, and "outcome" what that says, or nothing.

const cardOutcome = (value, { card: { current, total } }) => {
  if (total === 0) return 'There are no cards';
  const edges = { [total]: ', the last', 1: ', the first' };
  return `Card ${current} of ${total}${total > 1 ? edges[current] ?? '' : ''}`;
};

export const GROUPS = [
  {
    name: 'Cards',
    commands: [
      {
        type: 'previousCard', label: 'Previous', said: 'Previous card', kind: 'large back', needsCards: true,
        sign: 'currentCard', outcome: cardOutcome,
      },
      {
        type: 'nextCard', label: 'Next', said: 'Next card', kind: 'large forth', needsCards: true,
        sign: 'currentCard', outcome: cardOutcome,
      },
      {
        type: 'pushCurrentCard', label: 'Push this card to the learners', said: 'Push card', kind: 'wide', needsCards: true,
        sign: 'showCard', outcome: () => 'The card is shown',
      },
    ],
  },
  {
    name: 'Question',
    commands: [
      { type: 'pause', label: 'Pause', said: 'Pause', sign: 'pause', outcome: () => 'Paused' },
      { type: 'resume', label: 'Resume', said: 'Resume', sign: 'resume', outcome: () => 'Resumed' },
    ],
  },
  {
    name: 'Devices',
    commands: [
      {
        type: 'lockAll', label: 'Lock all', said: 'Lock all',
        sign: 'dialogShow', outcome: ({ isDismissible }) => !isDismissible && 'All devices are locked',
      },
      {
        type: 'unlockAll', label: 'Unlock all', said: 'Unlock all',
        sign: 'dialogShow', outcome: ({ isDismissible }) => isDismissible && 'All devices are unlocked',
      },
    ],
  },
  {
    name: 'Presenter',
    commands: [
      {
        type: 'presenterActive', label: 'Is the presenter there?', said: 'Question to the presenter', kind: 'wide', asksPresence: true,
        sign: 'presenterIsActive', outcome: () => 'The presenter is there',
      },
      {
        type: 'requestLessonInfo', label: 'Ask for the lesson', said: 'Request for the lesson’s name',
        sign: 'currentLesson', outcome: (value, { lesson }) => (lesson.name ? `The lesson is “${lesson.name}”` : 'The lesson has no name'),
      },
      {
        type: 'requestLesson', label: 'Ask for its cards', said: 'Request for the lesson’s cards',
        sign: 'currentCard', outcome: cardOutcome,
      },
    ],
  },
];

/** Its outcome is the end of the page. */
export const STOP = { type: 'stopSession', label: 'End the session', said: 'End of the session' };

// `before`: the card when it was sent.
export const ADD_IMAGE = {
  type: 'addImageCard', label: 'Add a picture as a card', said: 'Picture',
  sign: 'currentCard',
  outcome: (value, { card }, before) => (card.total > (before?.total ?? 0) ? 'The picture is the last card' : 'The picture was not taken'),
};

/** What is asked for without being told, whenever the connection has been made. */
export const ASKED_AT_ONCE = ['presenterActive', 'requestLessonInfo', 'requestLesson'];
