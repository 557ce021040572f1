// Who may do what at the addresses of a session. T is its token, which all of its devices know:
//
//   T.presenter, T.presenter.<token>   the presenter alone listens: answers come in here, and everyone's token with them.
//                                      Devices talk to it, each in its own name
//   T.user.<token>                     one device listens, which may talk to itself there, over whatever connection: its token
//                                      is known to itself and to the presenter
//   all others                         everyone listens
//
// Only the presenter talks to others than itself there. The bus knows no login: the presenter is who comes from the network
// address from which the session was started. Behind a proxy that is everyone.

const isPresenters = (place) => place === 'presenter' || place.startsWith('presenter.');

const placeOf = (session, address) => address.slice(session.token.length + 1);

const isAt = (connection, userToken) => [...connection.users].some(({ token }) => token === userToken);

export function mayRegister(session, connection, { address }) {
  return !isPresenters(placeOf(session, address)) || connection.remoteAddress === session.startedFrom;
}

/** listeners: the connections at the address. */
export function maySend(session, connection, { address, body }, listeners) {
  if (session.presenters.has(connection)) return true;
  const place = placeOf(session, address);
  if (isPresenters(place)) return isAt(connection, body?.from);
  if (place.startsWith('user.') && isAt(connection, place.slice('user.'.length))) return true;
  return listeners.every((listener) => listener === connection);
}
