// For tools on this machine: which sessions there are, and a wait for the next one.

import { Refusal } from './envelope.js';
import { isLoopback, sendJson } from './http.js';
import { MAX_WAITERS, WAIT_MS } from './limits.js';

/** Resolves when a session is started, when the wait is over, or when the client has gone. */
function nextStart(sessions, response) {
  return new Promise((resolve) => {
    const done = () => {
      clearTimeout(timer);
      sessions.off('started', done);
      response.off('close', done);
      resolve();
    };
    const timer = setTimeout(done, WAIT_MS);
    sessions.on('started', done);
    response.on('close', done);
  });
}

// With wait=started only started sessions count, and only those whose sequence number is above
// "since" (0 when absent): so that no session can slip through between two calls.
async function listSessions({ classroom: { sessions }, request, response, query }) {
  if (!isLoopback(request.socket.remoteAddress)) throw new Refusal(403, 'classroom.error.loopbackOnly');
  const since = Number(query.get('since') ?? 0);
  if (!Number.isInteger(since)) throw new Refusal(400, 'classroom.error.since');
  const waited = () => sessions.list().filter(({ sequence }) => sequence > since);
  const waits = query.get('wait') === 'started';
  if (waits && waited().length === 0) {
    if (sessions.listenerCount('started') >= MAX_WAITERS) throw new Refusal(429, 'classroom.error.tooManyWaiting');
    await nextStart(sessions, response);
  }
  sendJson(response, 200, waits ? waited() : sessions.list());
}

export const toolRoutes = [
  { path: '/classroom/sessions', method: 'GET', body: 'none', handle: listSessions },
];
