// Lessons on the local classroom that use every frame, recorded as they pass a tap.
import { nameOf } from './frames.mjs';
import { Program, startClassroom, startLearners } from './programs.mjs';
import { startRemoteControl } from './remote-control.mjs';
import { Tap } from './tap.mjs';

const LESSON = `
lesson Photosynthesis id=leaves
login
session start
wait learners 1 within 60
learners
ping
poll multiple alpha-upper 2 1
wait answers all within 60
poll pause
poll resume
poll stop
poll word-seed alpha-upper 3
wait answers all within 60
poll stop
heavy
card ref /leaf.png
remote active
remote lesson leaves Photosynthesis
remote card 1 2
assessment question text text=Leaves
assessment start title=Leaves
wait assessment all within 60
assessment dialog Well done.
assessment review Look again.
assessment stop
`;

const POLLING_LESSON = `
login
session start
wait learners 1 within 60
poll true-false
wait answers all within 60
`;

const END = `
session stop
logout
`;

async function teach(presenter, transport, lesson, meanwhile = async () => {}) {
  const [classroom, url] = await startClassroom();
  const tap = new Tap(url);
  await tap.start();
  const learners = startLearners(url, 1, '--quiet');
  const host = new Program(presenter,
    ['--server', tap.url, '--user', 'teacher', '--password', 'chalk', '--transports', transport]);
  host.child.stdin.write(lesson);
  const [, shown] = await host.says(/^Session ([\d ]+) is live/m);
  const code = shown.replaceAll(' ', '');
  // A host that fails ends before what it was to do has passed.
  await Promise.race([meanwhile(tap, url, code, host), host.ended]);
  host.child.stdin.end(END);
  await host.succeeds();
  await learners.succeeds();
  classroom.child.kill('SIGTERM');
  await classroom.ended;
  tap.stop();
  return tap.records;
}

// A command of the remote control, and a learner who is sent away.
async function useRemoteControl(tap, url, code, host) {
  const remote = await startRemoteControl(url, code);
  remote.send('nextCard');
  await tap.passes((entry) => entry.way && nameOf(entry) === 'in nextCard');
  host.child.stdin.write('remove "Ann 1"\n');
  await tap.passes((entry) => entry.way && nameOf(entry) === 'in unregister');
}

const requestText = ({ line, headers, body }) => [line, ...headers, '', body].join('\n').trimEnd();

/** A map from a name to all texts that were recorded under it, in order: frames, or requests and their answers. */
export async function record(presenter) {
  const named = new Map();
  const keep = (name, text) => { named.set(name, [...(named.get(name) ?? []), text]); };
  for (const entry of await teach(presenter, 'websocket', LESSON, useRemoteControl)) {
    if (entry.request) {
      const path = entry.request.line.split(' ')[1];
      keep(`${path} request`, entry.request.body);
      keep(`${path} reply`, entry.answer.body);
    } else {
      keep(nameOf(entry), entry.text);
    }
  }
  for (const { request, answer } of await teach(presenter, 'xhr-polling', POLLING_LESSON)) {
    const [, kind] = /\/(xhr\w*) /.exec(request.line) ?? [];
    if (!kind) continue;
    keep(`${kind} request`, requestText(request));
    keep(`${kind} answer`, requestText(answer));
  }
  return named;
}
