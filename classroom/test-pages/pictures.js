// Takes the pictures of the pages and of the terminal in docs/images anew: npm run pictures.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { readFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { startClassroom } from '../test/support/classroom.js';
import { Crowd, waitForSession } from '../lib/crowd.js';
import { closeBrowser, openContext, openPage } from './support/browser.js';
import { check } from './support/check.js';
import { field, heading, lesson, options, send, sent, teach, withTexts } from './support/class.js';
import { command, joinController, stateOf, told } from './support/controller.js';
import { PROGRAM } from './support/host.js';
import { asDataUri, card } from './support/pictures.js';
import { takePicture } from './support/screenshot.js';
import { runOnTerminal, showTerminal } from './support/terminal.js';

after(closeBrowser);

// Not high: a picture is as high as its page, and at least this.
const PHONE = { viewport: { width: 390, height: 480 }, hasTouch: true, isMobile: true, deviceScaleFactor: 2 };
const TABLET = { viewport: { width: 820, height: 480 }, deviceScaleFactor: 1.5 };
const LEAF = readFileSync(new URL('../../presenter/lessons/images/leaf.png', import.meta.url));

const LESSON = fileURLToPath(new URL('../../presenter/lessons/demo.lesson', import.meta.url));

const CHOICE = {
  id: 'choice', type: 'multiple', numberOfCorrectOptions: 2, instructions: 'Which two of these does a leaf take in?',
  activityOptions: withTexts({ A: 'Oxygen', B: 'Carbon dioxide', C: 'Water', D: 'Sugar' }),
  metadata: { ordinalType: 'alpha-upper', options: [] },
};

check('a poll on a telephone', async (t) => {
  const { presenter, page } = await lesson(t, PHONE);
  presenter.ask(CHOICE);
  await page.getByRole('checkbox', { name: 'B Carbon dioxide' }).check();
  await takePicture(page, 'learner-poll');
});

check('a card on a telephone', async (t) => {
  const { presenter, page } = await lesson(t, PHONE);
  presenter.publish('showCard', card(asDataUri(LEAF)), '.learner');
  await page.getByRole('img', { name: 'Card from your teacher' }).evaluate((element) => element.decode());
  await takePicture(page, 'learner-card');
});

check('an answered question in the dark', async (t) => {
  const { presenter, page } = await lesson(t, { ...PHONE, colorScheme: 'dark' });
  presenter.ask({
    id: 'scale', type: 'scale', instructions: 'How sure are you of that?', activityOptions: options('0', '1', '2', '3', '4'),
    metadata: { ordinalType: 'confidence', options: [0, 1, 2, 3, 4] },
  });
  await page.getByRole('radio', { name: 'Fairly confident' }).check();
  await send(page).click();
  await sent(page);
  await takePicture(page, 'learner-dark');
});

check('an assessment on a tablet', async (t) => {
  const { presenter, page, token } = await lesson(t, TABLET);
  presenter.publishObject('assessmentStart', {
    assessmentToken: 'leaves', questionCount: 5, title: 'Leaves and light', allowNavigateQuestionSet: true,
  });
  const give = async (number, question) => {
    await presenter.next('questionGet');
    presenter.ask({ id: `q${number}`, questionSetMode: 'Assessment', questionNumber: number, ...question }, `.user.${token}`);
  };
  await give(1, { type: 'number', instructions: 'How many leaves does a clover have?' });
  await field(page, 'Your number').fill('3');
  await send(page).click();
  await sent(page);
  await page.getByRole('button', { name: 'Next question' }).click();
  await give(2, {
    type: 'sort', instructions: 'Put these in order, from below to above.', activityOptions: withTexts({ A: 'Leaf', B: 'Root', C: 'Stem' }),
    metadata: { ordinalType: 'alpha-upper', options: [] },
  });
  await heading(page, 'Put these in order, from below to above.');
  await takePicture(page, 'learner-assessment');
});

check('the remote control on a telephone', async (t) => {
  const { url, presenter } = await teach(t);
  // As high as its page: the line at the foot stays in sight.
  const { page } = await joinController(t, url, presenter.code, { ...PHONE, viewport: { width: 390, height: 1060 } });
  await presenter.next('requestLesson');
  presenter.publish('currentLesson', { lessonId: 'Biology 7.3', name: 'Photosynthesis' }, '.controller');
  const tellCard = (currentCard) => presenter.publish('currentCard', { currentCard, totalCards: '7', cards: [] }, '.controller');
  tellCard('2');
  presenter.publish('presenterIsActive', '%0', '.controller');
  await heading(page, 'Photosynthesis');
  await stateOf(page, 'Card', '2 of 7');
  await stateOf(page, 'Presenter', 'is there');
  await command(page, 'Next').click();
  tellCard('3');
  await told(page, 'Card 3 of 7');
  await takePicture(page, 'controller');
});

check('the end of a lesson on a terminal', async (t) => {
  const { url } = await startClassroom(t);
  const leaving = new AbortController();
  t.after(() => leaving.abort());
  const learners = new Crowd({ url, count: 30, answerBy: 'order', note: () => {} });
  const attended = waitForSession(url, 0, leaving.signal).then(({ code }) => learners.attend(code, leaving.signal));
  const lesson = runOnTerminal(t, [PROGRAM, '--server', url, '--user', 'teacher', '--script', LESSON], { CALYX_PASSWORD: 'chalk' });
  // Whichever fails ends the wait for the other.
  const [written] = await Promise.all([lesson, attended]);
  assert.ok(learners.ok, learners.summary());
  const page = await openPage(t, await openContext(t, { viewport: { width: 740, height: 480 }, deviceScaleFactor: 1.5 }));
  // Another code each time, and other seconds.
  await showTerminal(page, written.replaceAll(/\b0:\d\d\b/g, '0:01').replaceAll(/(?<=Session )\d{3} \d{3}/g, '482 913'));
  await takePicture(page, 'lesson-terminal');
});
