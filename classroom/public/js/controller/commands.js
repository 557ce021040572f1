// The commands of the remote control, as the presenter gets them, in the groups in which they are shown.

export const GROUPS = [
  {
    name: 'Cards',
    commands: [
      { type: 'previousCard', label: 'Previous', said: 'Previous card', kind: 'large back', needsCards: true },
      { type: 'nextCard', label: 'Next', said: 'Next card', kind: 'large forth', needsCards: true },
      { type: 'pushCurrentCard', label: 'Push this card to the learners', said: 'Push card', kind: 'wide', needsCards: true },
    ],
  },
  {
    name: 'Question',
    commands: [
      { type: 'pause', label: 'Pause', said: 'Pause' },
      { type: 'resume', label: 'Resume', said: 'Resume' },
    ],
  },
  {
    name: 'Devices',
    commands: [
      { type: 'lockAll', label: 'Lock all', said: 'Lock all' },
      { type: 'unlockAll', label: 'Unlock all', said: 'Unlock all' },
    ],
  },
  {
    name: 'Presenter',
    commands: [
      { type: 'presenterActive', label: 'Is the presenter there?', said: 'Question to the presenter', kind: 'wide' },
      { type: 'requestLessonInfo', label: 'Ask for the lesson', said: 'Request for the lesson’s name' },
      { type: 'requestLesson', label: 'Ask for its cards', said: 'Request for the lesson’s cards' },
    ],
  },
];

export const STOP = { type: 'stopSession', label: 'End the session', said: 'End of the session' };
export const ADD_IMAGE = { type: 'addImageCard', label: 'Add a picture as a card', said: 'Picture' };

/** What is asked for without being told, whenever the connection has been made. */
export const ASKED_AT_ONCE = ['presenterActive', 'requestLessonInfo', 'requestLesson'];
