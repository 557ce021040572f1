import { Device } from '../device/device.js';
import { recall, remember } from '../device/storage.js';
import { Lesson } from '../model/lesson.js';
import { Drafts } from './drafts.js';
import { LessonPage } from './lesson-page.js';

const LESSON_KEY = 'classroom.lesson';

function deviceType() {
  if (!matchMedia('(pointer: coarse)').matches) return 'laptop';
  return Math.min(screen.width, screen.height) < 600 ? 'phone' : 'tablet';
}

/** A learner's part in one session: the device, the lesson and its page, from the join to the end. */
export class Attendance {
  place = null;
  #onEnd;
  #timer;
  // The class knows of this learner: until then nothing is shown.
  #isIn = false;
  #arrive;
  #arrived = new Promise((resolve) => { this.#arrive = resolve; });
  #drafts = new Drafts();
  #lesson = new Lesson({
    drafts: this.#drafts,
    publish: (type, value) => this.#device.publish(type, value),
    changed: () => this.#changed(),
  });
  #page = new LessonPage(this.#lesson);
  #device = new Device({
    mode: 'learner',
    deviceType: deviceType(),
    addresses: ['.learner'],
    handlers: this.#lesson.handlers,
    onState: (state, reason) => this.#states[state](reason),
  });
  #states = {
    open: () => this.#opened(),
    lost: () => this.#page.showLost(true),
    over: (reason) => this.#over(reason),
  };

  /** onEnd(reason): the session is over, or this device's part in it. */
  constructor(onEnd) {
    this.#onEnd = onEnd;
  }

  /** Joins, or comes back to a place; resolves once the join has gone out. Rejects when the service refuses. */
  async join(wanted) {
    this.place = await this.#device.join(wanted);
    this.#drafts.open(this.place.userToken);
    const saved = recall('sessionStorage', LESSON_KEY);
    if (saved?.userToken === this.place.userToken) this.#lesson.restore(saved.lesson);
    await this.#arrived;
    this.#timer = setInterval(() => this.#page.tick(), 1000);
    addEventListener('pagehide', this.#keep);
    document.addEventListener('visibilitychange', this.#keep);
  }

  leave() {
    this.#device.leave();
    clearInterval(this.#timer);
    removeEventListener('pagehide', this.#keep);
    document.removeEventListener('visibilitychange', this.#keep);
    remember('sessionStorage', LESSON_KEY, null);
    this.#drafts.forget();
    this.#page.close();
  }

  // The lesson as it stands, for the page that comes after a reload. One that is too large is not kept at all.
  #keep = () => {
    const kept = remember('sessionStorage', LESSON_KEY, { userToken: this.place.userToken, lesson: this.#lesson });
    if (!kept) remember('sessionStorage', LESSON_KEY, null);
  };

  #changed() {
    if (!this.#isIn) return;
    this.#page.render();
    this.#keep();
  }

  async #opened() {
    const join = () => this.#device.publish('join', { userName: this.place.userName, deviceType: deviceType() });
    const joined = join();
    if (this.#lesson.shows === 'coming') this.#lesson.askAgain();
    else this.#lesson.sendAgain();
    this.#page.showLost(false);
    // Once more: a codec that could not be loaded may be there now. Without a connection it is for the next one.
    if (!(await joined || await join()) || this.#isIn) return;
    this.#isIn = true;
    this.#changed();
    this.#arrive();
  }

  #over(reason) {
    this.leave();
    this.#onEnd(reason);
  }
}
