// Teaches a whole lesson with the programs of this build: the classroom, simulated learners, the host.
import assert from 'node:assert/strict';
import { fileURLToPath } from 'node:url';

// Wide enough for any table, and without colours.
Object.assign(process.env, { COLUMNS: '200', NO_COLOR: '1', LC_ALL: 'C.UTF-8', LANGUAGE: '' });
const { Program, startClassroom, startLearners, withPrograms } = await import('../../docs/support/programs.mjs');

export { withPrograms as run };

/** A module of the classroom. */
export const classroomModule = (name) => import(new URL(`../../../classroom/lib/${name}`, import.meta.url));

export const lessonFile = (name) => fileURLToPath(new URL(`../../../presenter/lessons/${name}`, import.meta.url));

export function numberOf(text, pattern) {
  const match = pattern.exec(text);
  assert.ok(match, `${pattern} is not in:\n${text}`);
  return Number(match[1]);
}

/**
 * Teaches the lesson of that name to so many learners. What the host and the learners have printed, once all have ended
 * well. watch(url), if any, is waited for before the learners come; what it resolves with is called after the lesson,
 * while the classroom is still there.
 */
export async function teach(name, count, watch = async () => () => {}) {
  const [classroom, url] = await startClassroom();
  const host = new Program(process.argv[2], [
    '--server', url, '--user', 'teacher', '--password', 'chalk', '--script', lessonFile(name),
  ]);
  const endedEarly = host.ended.then(() => assert.fail(`the host has ended already:\n${host.output}`));
  const conclude = await Promise.race([watch(url), endedEarly]);
  const learners = startLearners(url, count);
  await host.succeeds();
  await learners.succeeds();
  assert.equal(numberOf(learners.output, /decode-failures=(\d+)/), 0);
  await conclude();
  classroom.child.kill('SIGTERM');
  await classroom.succeeds();
  return { lesson: host.output, learners: learners.output };
}
