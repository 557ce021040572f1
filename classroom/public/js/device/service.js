import { t } from '../words/words.js';

const ANSWER_MS = 10000;

/** What the service refuses, by the key that it gives. */
export class Refused extends Error {
  constructor(key) {
    super(key);
    this.key = key;
  }
}

const MESSAGES = {
  'session.error.full': t('This session is full.'),
  'session.error.notStarted': t('This session has not been started yet. Try again in a moment.'),
  'session.error.unknownCode': t('There is no session with this code. Look at the code once more.'),
};

/** A sentence for whoever could not join. */
export function explain(error) {
  if (error instanceof Refused) return MESSAGES[error.key] ?? t('The classroom does not let you in (%1).', error.key);
  return t('The classroom cannot be reached. Look whether this device is connected.');
}

/** Joins a session; resolves with {userToken, sessionToken}. With a userToken: as the user that it belongs to. */
export async function join(profile) {
  const reply = await fetch('/tavisto/classroom/session/join', {
    method: 'POST',
    headers: { 'content-type': 'application/json; charset=UTF-8' },
    body: JSON.stringify(profile),
    signal: AbortSignal.timeout(ANSWER_MS),
  });
  const { success, errorMsgKeys, data } = await reply.json();
  if (!success) throw new Refused(errorMsgKeys[0]);
  return data;
}
