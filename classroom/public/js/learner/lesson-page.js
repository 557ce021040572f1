import { Dialog } from '../ui/dialog.js';
import { el } from '../ui/dom.js';
import { showNotices } from '../ui/notices.js';
import { showScreen } from '../ui/screen.js';
import { t } from '../words/words.js';
import { AssessmentBar } from './assessment-bar.js';
import { screenOf } from './screens.js';

/** The page of a learner in a lesson: a screen, what stands above it, and a dialog over it. */
export class LessonPage {
  #lesson;
  #bar;
  #dialog;
  #screen = null;
  #shown = {};
  #isLost = false;

  constructor(lesson) {
    this.#lesson = lesson;
    this.#bar = new AssessmentBar(lesson);
    this.#dialog = new Dialog(() => lesson.dismiss());
  }

  render() {
    const lesson = this.#lesson;
    const { build, of, name } = screenOf(lesson);
    const subject = of(lesson);
    if (this.#shown.build === build && this.#shown.subject === subject) {
      this.#screen.update();
    } else {
      this.#shown = { build, subject };
      this.#screen = build(lesson);
      showScreen(el('div', { class: 'lesson' }, this.#bar.element, this.#screen.element), name, { focus: !lesson.notice });
    }
    this.#bar.update();
    this.#renderAbove();
  }

  /** Tells that the connection has been lost and is being made again, or that it is there. */
  showLost(isLost) {
    this.#isLost = isLost;
    this.#renderAbove();
  }

  tick() {
    this.#lesson.tick();
    this.#bar.tick();
    this.#screen?.tick?.();
  }

  close() {
    this.#dialog.remove();
    showNotices([]);
  }

  #renderAbove() {
    const { paused, expectsPicture, notice } = this.#lesson;
    showNotices([
      this.#isLost && { text: t('The connection is lost. It is being made again …'), kind: 'warning' },
      paused && { text: t('Your teacher has paused this.'), kind: 'pause' },
      expectsPicture && { text: t('A large picture is on its way.'), kind: 'plain' },
    ]);
    const wasOpen = this.#dialog.isOpen;
    this.#dialog.show(notice);
    if (wasOpen && !notice) document.querySelector('main h1')?.focus();
  }
}
