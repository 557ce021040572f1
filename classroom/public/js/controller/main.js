// The remote control's page: joins, shows what the presenter is at, and sends its commands.

import { Device } from '../device/device.js';
import { Place } from '../device/place.js';
import { Refused } from '../device/service.js';
import { button, el, title } from '../ui/dom.js';
import { joinForm } from '../ui/join-form.js';
import { showNotices } from '../ui/notices.js';
import { showScreen } from '../ui/screen.js';
import { showWho } from '../ui/who.js';
import { t } from '../words/words.js';
import { ASKED_AT_ONCE } from './commands.js';
import { ANSWER_MS } from './outcome.js';
import { RemotePage } from './remote-page.js';
import { RemoteState } from './state.js';

const NAME = 'Remote control';
// A presence is as old as its last answer.
const ASK_AGAIN_MS = 30000;

const ENDS = {
  stopped: [t('This session has ended'), t('There is nothing left to control.')],
  removed: [t('This remote control has been sent away'), t('The presenter has taken it out of the session.')],
  elsewhere: [t('The remote control is elsewhere'), t('Another window has taken its place.')],
};

const place = new Place('controller');
const givenCode = new URLSearchParams(location.search).get('code') ?? '';

function askToJoin({ focus = true } = {}) {
  showWho(null);
  const join = ({ code, userToken }) => control({ code, userName: NAME, userToken });
  showScreen(joinForm({
    heading: t(NAME), text: t('The presenter shows the code of its session.'), code: givenCode, asksName: false, join,
  }), t(NAME), { focus });
}

function ended(reason) {
  if (reason === 'elsewhere') place.leave();
  else place.forget();
  const [heading, text] = ENDS[reason];
  showWho(null);
  showNotices([]);
  showScreen(el('article', { class: 'sheet' }, title(heading), el('p', {}, text),
    el('div', { class: 'actions' }, button(t('Join a session'), () => askToJoin(), { class: 'primary' }))), t(NAME));
}

async function control(wanted) {
  const state = new RemoteState((message) => page.changed(message));
  let waiting;
  const send = ({ type }, data = {}) => {
    if (type === 'presenterActive') {
      state.asked();
      clearTimeout(waiting);
      waiting = setTimeout(() => state.waited(), ANSWER_MS);
    }
    return device.publish(type, data);
  };
  const page = new RemotePage(state, send);
  const end = () => {
    clearInterval(asking);
    clearTimeout(waiting);
    page.end();
  };
  const states = {
    open: () => {
      showNotices([]);
      state.linked(true);
      ASKED_AT_ONCE.forEach((type) => send({ type }));
    },
    lost: () => {
      showNotices([{ text: t('The connection is lost. It is being made again …'), kind: 'warning' }]);
      state.linked(false);
    },
    over: (reason) => {
      end();
      ended(reason);
    },
  };
  const device = new Device({
    mode: 'controller',
    deviceType: 'controller',
    // What the learners are shown says that a card was pushed.
    addresses: ['.controller', '.learner'],
    handlers: state.handlers,
    onState: (now, reason) => states[now](reason),
  });
  const asking = setInterval(() => {
    if (device.connected) send({ type: 'presenterActive' });
  }, ASK_AGAIN_MS);
  const taken = await device.join(wanted).catch((error) => {
    end();
    throw error;
  });
  place.take(taken);
  showWho({ ...taken, userName: '' }, () => {
    device.leave();
    end();
    place.leave();
    showNotices([]);
    askToJoin();
  });
  showScreen(page.element, t(NAME));
}

async function begin() {
  const { current } = place;
  if (!current || (givenCode && givenCode !== current.code)) return askToJoin({ focus: false });
  try {
    return await control(current);
  } catch (error) {
    if (error instanceof Refused) place.forget();
    else place.leave();
    return askToJoin();
  }
}

begin();
