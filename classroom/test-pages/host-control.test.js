// A lesson of cards, led from the remote control's page: the real library's host does what it asks, and the learner sees it.

import assert from 'node:assert/strict';
import { after } from 'node:test';
import { fileURLToPath } from 'node:url';
import { ADD_IMAGE, STOP } from '../public/js/controller/commands.js';
import { closeBrowser } from './support/browser.js';
import { check } from './support/check.js';
import { heading, send } from './support/class.js';
import { command, joinController, stateOf, told } from './support/controller.js';
import { learnerOf, teachWithLibrary } from './support/host.js';

after(closeBrowser);

const image = (name) => fileURLToPath(new URL(`../../presenter/lessons/images/${name}.png`, import.meta.url));

/** A lesson of two cards with a learner and a remote control. */
async function lead(t) {
  const room = await teachWithLibrary(t);
  await room.host.do('lesson "From light to sugar" id=light-to-sugar');
  await room.host.do(`deck add "${image('leaf')}" name="A leaf"`);
  await room.host.do(`deck upload "${image('sun')}" name="The sun"`);
  const learner = await learnerOf(t, room);
  const { page: remote } = await joinController(t, room.url, room.host.code);
  return { ...room, learner, remote };
}

const shownCard = async (page) => {
  const card = page.getByRole('img', { name: 'Card from your teacher' });
  await card.waitFor();
  await card.evaluate((element) => element.decode());
  return card.getAttribute('src');
};

check('the remote control goes through the cards, pushes one and adds one', async (t) => {
  const { host, learner, remote } = await lead(t);
  await heading(remote, 'From light to sugar');
  await stateOf(remote, 'Card', '1 of 2');
  await stateOf(remote, 'Presenter', 'is there');
  await command(remote, 'Push this card to the learners').click();
  await told(remote, 'The card is shown');
  assert.match(await shownCard(learner), /^data:image\/png;base64,/);
  await command(remote, 'Next').click();
  await stateOf(remote, 'Card', '2 of 2');
  await command(remote, 'Push this card to the learners').click();
  await learner.waitForFunction(() => document.querySelector('.card img')?.src.includes('/downloadResourceFile?'));
  await shownCard(learner);
  await command(remote, 'Previous').click();
  await stateOf(remote, 'Card', '1 of 2');
  const [chooser] = await Promise.all([remote.waitForEvent('filechooser'), command(remote, ADD_IMAGE.label).click()]);
  await chooser.setFiles(image('drop'));
  await stateOf(remote, 'Card', '3 of 3');
  await command(remote, 'Push this card to the learners').click();
  await learner.waitForFunction(() => document.querySelector('.card img')?.src.startsWith('data:image/jpeg;'));
  await shownCard(learner);
  await host.finish();
});

check('the remote control pauses, locks and ends the lesson', async (t) => {
  const { host, learner, remote } = await lead(t);
  await host.do('poll true-false');
  await send(learner).waitFor();
  await command(remote, 'Pause').click();
  await told(remote, 'Paused');
  await learner.getByText('Your teacher has paused this.').waitFor();
  await command(remote, 'Resume').click();
  await told(remote, 'Resumed');
  await learner.getByText('Your teacher has paused this.').waitFor({ state: 'detached' });
  await command(remote, 'Lock all').click();
  await told(remote, 'All devices are locked');
  await learner.getByRole('dialog').getByText('Your teacher will go on from here.').waitFor();
  await command(remote, 'Unlock all').click();
  await told(remote, 'All devices are unlocked');
  await learner.getByRole('dialog').getByRole('button', { name: 'OK' }).click();
  await learner.getByRole('dialog').waitFor({ state: 'hidden' });
  await command(remote, STOP.label).click();
  await remote.getByRole('dialog').getByRole('button', { name: STOP.label }).click();
  await heading(learner, 'This session has ended');
  await heading(remote, 'This session has ended');
  await host.finish();
});
