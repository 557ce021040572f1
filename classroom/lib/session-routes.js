// Sessions from their creation to their end, and who is in them.

import { Refusal, success } from './envelope.js';
import { requireSourceSystem, requireTexts } from './fields.js';
import { ownAddress } from './http.js';
import { MAX_NAME_LENGTH } from './limits.js';
import { MODES } from './sessions.js';

function create({ classroom, login }) {
  return success({ sessionCode: classroom.sessions.create(login).code });
}

function start({ classroom, body, login }) {
  requireSourceSystem(body, 'session');
  const [code, , version] = requireTexts(body, 'session', ['sessionCode', 'serverUrl', 'version']);
  if (!/^3\./.test(version)) throw new Refusal(400, 'session.error.version');
  const session = classroom.sessions.start(code, login);
  return success({ sessionCode: session.code, sessionToken: session.token });
}

// Learners and the remote control are devices that only know the code; a presenter has logged in. Each is
// given the address at which it has reached us, not the presenter's: that one may be a loopback address.
function join({ classroom, body, user, request }) {
  const names = ['userName', 'sessionCode', 'mode', 'deviceName', 'deviceType'];
  const [userName, code, mode, deviceName, deviceType] = requireTexts(body, 'session', names, MAX_NAME_LENGTH);
  if (!MODES.includes(mode)) throw new Refusal(400, 'session.error.mode');
  if (mode === 'presenter' && user === undefined) throw new Refusal(403, 'login.error.required');
  const session = classroom.sessions.byCode(code);
  if (!session.started) throw new Refusal(409, 'session.error.notStarted');
  const joined = session.join({ userToken: body.userToken, userName, mode, deviceName, deviceType });
  return success({ userToken: joined.token, sessionToken: session.token, serverUrl: ownAddress(request) });
}

function getUsers({ classroom, body, login }) {
  const [token] = requireTexts(body, 'session', ['sessionToken']);
  const users = classroom.sessions.owned(token, login).present();
  return success({
    users: users.map(({ token: userToken, userName, mode, deviceName, deviceType }) => (
      { userToken, userName, mode, deviceName, deviceType })),
  });
}

function stop({ classroom, body, login }) {
  const [token] = requireTexts(body, 'session', ['sessionToken']);
  classroom.sessions.stop(token, login);
  return success();
}

export const sessionRoutes = [
  { path: '/tavisto/session/create', login: true, handle: create },
  {
    path: '/tavisto/session/getcollabserverurl',
    login: true,
    handle: ({ classroom, request, user }) => success({ url: ownAddress(request) + classroom.front.pathFor(user) }),
  },
  {
    path: '/tavisto/config/findTenantFeatureDetails',
    login: true,
    handle: ({ classroom }) => success({ sockJSProtocols: classroom.options.sockjsTransports }),
  },
  { path: '/tavisto/session/start', login: true, handle: start },
  { path: '/tavisto/classroom/session/join', handle: join },
  { path: '/tavisto/session/getusers', login: true, handle: getUsers },
  { path: '/tavisto/session/stop', login: true, handle: stop },
];
