// The minimal example, on the local classroom with three simulated learners. Argument: the program.
import assert from 'node:assert/strict';
import { Program, startClassroom, startLearners, withPrograms } from './support/programs.mjs';

const LEARNERS = 3;

await withPrograms(async () => {
  const [, url] = await startClassroom();
  const learners = startLearners(url, LEARNERS);
  const host = new Program(process.argv[2], [url, 'teacher', 'chalk', String(LEARNERS)]);
  await host.succeeds();
  await learners.succeeds();
  assert.match(host.output, /^Join with the code \S+$/m);
  assert.equal(host.output.match(/ has joined$/gm)?.length, LEARNERS, host.output);
  assert.equal(host.output.match(/^\S+ answers [A-D] after \d+ s$/gm)?.length, LEARNERS, host.output);

  const refused = new Program(process.argv[2], [url, 'teacher', 'cheese', String(LEARNERS)]);
  assert.equal(await refused.ended, 1);
  assert.match(refused.output, /login\.error/);
});
