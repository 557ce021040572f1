// A remote control and a small class whose answers are always the same, in one session of the classroom.
//
// node devices.mjs CLASSROOM_FOLDER URL CODE [NAME=PICK ...]
//
// Each NAME is a learner who picks the option of that number (from 0) of every question that has options. Another PICK is
// the answer to questions without options; "none" never answers. The remote
// control sends what it reads on stdin, a line for each command: "nextCard", or "addImageCard {...}". What the devices
// receive is written to stdout: "remote: currentCard {...}", "NAME: dialogShow {...}".
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { createInterface } from 'node:readline';
import { pathToFileURL } from 'node:url';

const [folder, url, code, ...learners] = process.argv.slice(2);
const classroom = resolve(folder);
const load = (file) => import(pathToFileURL(join(classroom, file)));
const { post } = await load('lib/rest.js');
const { decodeData, encodeData } = await load('lib/codec.js');
const EventBus = createRequire(join(classroom, 'package.json'))('vertx3-eventbus-client');

async function joinSession(mode, userName, addresses, receive) {
  const { userToken, sessionToken, serverUrl } = await post(url, '/tavisto/classroom/session/join', {
    userName, sessionCode: code, mode, deviceName: userName, deviceType: mode === 'controller' ? 'controller' : 'tablet',
  });
  const bus = new EventBus(`${serverUrl}/eventbus`);
  await new Promise((opened) => { bus.onopen = opened; });
  bus.onclose = () => process.exit(0);
  const own = `.user.${userToken}`;
  for (const address of ['', own, ...addresses]) {
    bus.registerHandler(sessionToken + address, (error, { body }) => {
      if (!error && body.from !== userToken && body.type) receive(body.type, body.data && decodeData(body.data));
    });
  }
  return (type, value) => bus.publish(`${sessionToken}.presenter`, { from: userToken, type, data: encodeData(value) });
}

async function joinLearner(name, pick) {
  const publish = await joinSession('learner', name, ['.learner'], (type, question) => {
    console.log(`${name}: ${type} ${JSON.stringify(question)}`);
    if (type !== 'questionStart' || pick === 'none') return;
    const { id, questionSetMode, activityOptions = [] } = question;
    const option = activityOptions[Number(pick) % activityOptions.length];
    const answer = option ? { optionAnswers: [{ activityOptionId: option.id }] } : { answer: pick };
    publish('questionResponse', { questionId: id, questionSetMode, ...answer, responseTime: 1000 });
  });
  publish('join', { userName: name, deviceType: 'tablet' });
}

for (const learner of learners) {
  const split = learner.lastIndexOf('=');
  await joinLearner(learner.slice(0, split), learner.slice(split + 1));
}
const command = await joinSession('controller', 'Remote control', ['.controller'], (type, value) => {
  console.log(`remote: ${type} ${JSON.stringify(value)}`);
});
console.log('joined');
for await (const line of createInterface({ input: process.stdin })) {
  const [, type, data = '{}'] = /^(\w+) ?(.+)?$/.exec(line);
  command(type, JSON.parse(data));
}
process.exit(0);
