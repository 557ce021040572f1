// Who may do what at the addresses of a session. T is its token, which all of its devices know:
//
//   T.presenter, T.presenter.<token>   the presenter alone listens: answers come in here, and everyone's token with them.
//                                      Devices talk to it, each in its own name, and only the remote
//                                      control says what one says
//   T.user.<token>                     one device listens, which may talk to itself there, over whatever connection: its token
//                                      is known to itself and to the presenter
//   all others                         everyone listens
//
// Only the presenter talks to others than itself there. The bus knows no login: the presenter is who comes from the network
// address from which the session was started, or behind a proxy by the path that the login was told.

// What a remote control says: from a learner it is a forgery.
const REMOTE_COMMANDS = new Set([
  'stopSession', 'requestLessonInfo', 'requestLesson', 'presenterActive', 'pause', 'resume', 'lockAll', 'unlockAll', 'nextCard',
  'previousCard', 'pushCurrentCard', 'addImageCard',
]);

const isPresenters = (place) => place === 'presenter' || place.startsWith('presenter.');

const placeOf = (session, address) => address.slice(session.token.length + 1);

const userAt = (connection, userToken) => [...connection.users].find(({ token }) => token === userToken);

// Who comes and goes is told by the bus alone.
function isOwnMessage(connection, { from, type, action } = {}) {
  const user = userAt(connection, from);
  return user !== undefined && action === undefined && (user.mode === 'controller' || !REMOTE_COMMANDS.has(type));
}

export function mayRegister(session, connection, { address }, front) {
  return !isPresenters(placeOf(session, address)) || front.isPresenters(session, connection);
}

/** listeners: the connections at the address. */
export function maySend(session, connection, { address, body }, listeners) {
  if (session.presenters.has(connection)) return true;
  const place = placeOf(session, address);
  if (isPresenters(place)) return isOwnMessage(connection, body ?? {});
  if (place.startsWith('user.') && userAt(connection, place.slice('user.'.length))) return true;
  return listeners.every((listener) => listener === connection);
}
