// The learner's page: joins, attends, and comes back after a reload.

import { Place } from '../device/place.js';
import { Refused } from '../device/service.js';
import { button, el, title } from '../ui/dom.js';
import { joinForm } from '../ui/join-form.js';
import { showScreen } from '../ui/screen.js';
import { showWho } from '../ui/who.js';
import { t } from '../words/words.js';
import { Attendance } from './attendance.js';

const ENDS = {
  stopped: [t('This session has ended'), t('Thank you for taking part.')],
  removed: [t('You have been taken out'), t('Your teacher has taken this device out of the session.')],
  elsewhere: [t('You have gone on elsewhere'), t('Another window has taken your place in this session.')],
};

const place = new Place('learner');
const givenCode = new URLSearchParams(location.search).get('code') ?? '';

function askToJoin({ focus = true } = {}) {
  showWho(null);
  const { last } = place;
  const offered = last && (!givenCode || givenCode === last.code) ? last : null;
  showScreen(joinForm({
    heading: t('Join your class'),
    text: t('Your teacher shows the code.'),
    code: givenCode || offered?.code,
    name: last?.userName,
    last: offered,
    join: attend,
  }), t('Join'), { focus });
}

async function attend(wanted) {
  const attendance = new Attendance((reason) => ended(reason, attendance.place));
  await attendance.join(wanted);
  place.take(attendance.place);
  showWho(attendance.place, () => {
    attendance.leave();
    place.leave();
    askToJoin();
  });
}

function ended(reason, lastPlace) {
  if (reason === 'elsewhere') place.leave();
  else place.forget();
  const [heading, text] = ENDS[reason];
  const comeBack = () => attend(lastPlace).catch(() => askToJoin());
  showWho(null);
  showScreen(el('article', { class: 'sheet' }, el('div', { class: 'leaf', 'aria-hidden': 'true' }), title(heading), el('p', {}, text),
    el('div', { class: 'actions' },
      reason === 'elsewhere' && button(t('Go on here'), comeBack, { class: 'primary' }),
      button(t('Join a session'), () => askToJoin(), { class: 'secondary' }))), heading);
}

async function begin() {
  const { current } = place;
  if (!current || (givenCode && givenCode !== current.code)) return askToJoin({ focus: false });
  try {
    return await attend(current);
  } catch (error) {
    if (error instanceof Refused) place.forget();
    else place.leave();
    return askToJoin();
  }
}

begin();
