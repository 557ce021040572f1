// Whose connection is it? A device shows by registering its own address, T.user.<its token>. A controller
// may register T.controller alone; then it is known only while the session has no second one.

function userAt(session, address) {
  const place = address.slice(session.token.length + 1);
  if (place.startsWith('user.')) return session.users.get(place.slice('user.'.length));
  if (place !== 'controller') return undefined;
  const controllers = session.present().filter(({ mode }) => mode === 'controller');
  return controllers.length === 1 ? controllers[0] : undefined;
}

const KINDS = { learner: 'user', controller: 'controller' };

/** Tells the presenter which devices come and go: `report(session, body)` for each. */
export class Presence {
  #report;
  // The connection at which a user is, and the session that it belongs to.
  #places = new Map();

  constructor(report) {
    this.#report = report;
  }

  registered(session, address, connection) {
    const user = userAt(session, address);
    if (!(user?.mode in KINDS)) return;
    const before = this.#places.get(user);
    this.#places.set(user, { session, address, connection });
    connection.users.add(user);
    session.came(user);
    if (!before) this.#tell(session, 'register', user);
  }

  unregistered(address, connection) {
    for (const user of [...connection.users]) {
      if (this.#places.get(user)?.address === address) this.#gone(user, connection);
    }
  }

  ended(connection) {
    for (const user of [...connection.users]) this.#gone(user, connection);
  }

  // A device that has come back over a new connection is not gone when the old one ends at last.
  #gone(user, connection) {
    connection.users.delete(user);
    const place = this.#places.get(user);
    if (place?.connection !== connection) return;
    this.#places.delete(user);
    user.left = true;
    this.#tell(place.session, 'unregister', user);
  }

  #tell(session, action, user) {
    this.#report(session, { action, client: { token: user.token, type: KINDS[user.mode] } });
  }
}
