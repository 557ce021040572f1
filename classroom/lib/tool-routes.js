// For tools on this machine: which sessions there are, and a wait for the next one.

import { Refusal } from './envelope.js';
import { addressOf } from './front.js';
import { isLoopback, sendJson } from './http.js';
import { MAX_WAITERS, WAIT_MS } from './limits.js';

// What can be waited for: the event that may bring it, which is also the property of a session that tells.
// A learner waits for "listening": what it says before a presenter is on the bus is lost.
const WAITS = ['started', 'listening'];

/** Resolves when the event comes, when the time is over, or when the client has gone. */
function nextEvent(sessions, event, response, msecs) {
  return new Promise((resolve) => {
    const done = () => {
      clearTimeout(timer);
      sessions.off(event, done);
      response.off('close', done);
      resolve();
    };
    const timer = setTimeout(done, msecs);
    sessions.on(event, done);
    response.on('close', done);
  });
}

// Only sessions whose sequence number is above "since" (0 when absent) count in a wait: so that no session
// can slip through between two calls.
async function waitFor({ classroom: { sessions }, response, query }, event) {
  const since = Number(query.get('since') ?? 0);
  if (!WAITS.includes(event)) throw new Refusal(400, 'classroom.error.wait');
  if (!Number.isInteger(since)) throw new Refusal(400, 'classroom.error.since');
  const fitting = () => sessions.list().filter((session) => session[event] && session.sequence > since);
  if (fitting().length > 0) return fitting();
  if (sessions.listenerCount(event) >= MAX_WAITERS) throw new Refusal(429, 'classroom.error.tooManyWaiting');
  const end = Date.now() + WAIT_MS;
  while (fitting().length === 0 && Date.now() < end && !response.destroyed) {
    await nextEvent(sessions, event, response, end - Date.now());
  }
  return fitting();
}

async function listSessions(context) {
  const { request, response, query, classroom } = context;
  if (!isLoopback(addressOf(request))) throw new Refusal(403, 'classroom.error.loopbackOnly');
  const wait = query.get('wait');
  sendJson(response, 200, wait === null ? classroom.sessions.list() : await waitFor(context, wait));
}

export const toolRoutes = [
  { path: '/classroom/sessions', method: 'GET', body: 'none', handle: listSessions },
];
