// The remote control of a session, on the local classroom's bus with a client that others wrote.
import { createRequire } from 'node:module';
import { decodeData, encodeData } from '../../../classroom/lib/codec.js';
import { post } from '../../../classroom/lib/rest.js';

const require = createRequire(new URL('../../../classroom/package.json', import.meta.url));
const EventBus = require('vertx3-eventbus-client');

export async function startRemoteControl(url, sessionCode) {
  const { userToken, sessionToken, serverUrl } = await post(url, '/tavisto/classroom/session/join', {
    userName: 'Remote', sessionCode, mode: 'controller', deviceName: 'remote', deviceType: 'controller',
  });
  const bus = new EventBus(`${serverUrl}/eventbus`);
  await new Promise((resolve) => { bus.onopen = resolve; });
  const heard = [];
  const waiting = new Set();
  bus.registerHandler(`${sessionToken}.controller`, (error, { body }) => {
    heard.push(body);
    for (const look of waiting) look();
  });
  return {
    send: (type, value = {}) =>
      bus.publish(`${sessionToken}.presenter`, { from: userToken, type, data: encodeData(value) }),
    /** The data of the next message of a type, which is taken out. */
    hears: (wanted) => new Promise((resolve) => {
      const look = () => {
        const at = heard.findIndex(({ type }) => type === wanted);
        if (at < 0) return;
        waiting.delete(look);
        resolve(decodeData(heard.splice(at, 1)[0].data));
      };
      waiting.add(look);
      look();
    }),
    close: () => bus.close(),
  };
}
