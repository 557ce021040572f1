import { t } from '../words/words.js';
import { Activity } from './activity.js';
import { Stopwatch } from './stopwatch.js';
import { isObject, textOf, wholeNumber } from './text.js';

const MOST_QUESTIONS = 500;
const MOST_SECONDS = 7 * 24 * 3600;

/** The learner's way through an assessment: which question is on, which were answered, and the time that is left. */
export class Assessment {
  // The number that has been asked for, or that is on the page.
  current;
  timeUp = false;
  over = false;
  #activities = new Map();

  constructor(options, now, { current, timeUp = false, over = false, watch, activities = [] } = {}) {
    this.options = options;
    this.token = textOf(options.assessmentToken);
    this.count = wholeNumber(options.questionCount, 1, MOST_QUESTIONS);
    this.current = current ?? wholeNumber(options.startingQuestionNumber || 1, 1, this.count);
    this.watch = new Stopwatch(now, watch);
    // In seconds; 0 is for as long as it takes.
    this.allowed = wholeNumber(options.allowedTime, 0, MOST_SECONDS);
    Object.assign(this, { timeUp, over });
    for (const saved of activities) this.keep(new Activity(saved, now));
  }

  get title() {
    return textOf(this.options.title) || t('Assessment');
  }

  get maySkip() {
    return this.options.allowSkipQuestion === true;
  }

  get mayNavigate() {
    return this.options.allowNavigateQuestionSet === true;
  }

  get mayChangeAnswers() {
    return this.options.allowResubmitResponse !== false;
  }

  get showsSummary() {
    return this.options.showSummaryOnAssessmentCompletion === true;
  }

  get answered() {
    return [...this.#activities.values()].filter(({ answer }) => answer !== null).length;
  }

  /** The milliseconds left, or null when there is no limit. */
  get remaining() {
    return this.allowed === 0 ? null : Math.max(0, this.allowed * 1000 - this.watch.elapsed);
  }

  /** The number of a question that has come: its own, or the one that was asked for. */
  numberOf(document) {
    return wholeNumber(document.questionNumber || this.current, 1, this.count);
  }

  show(activity) {
    this.current = activity.number;
    this.keep(activity);
  }

  keep(activity) {
    this.#activities.set(activity.number, activity);
  }

  at(number) {
    return this.#activities.get(number);
  }

  toJSON() {
    const { options, current, timeUp, over, watch } = this;
    return { options, current, timeUp, over, watch, activities: [...this.#activities.values()] };
  }

  static from(saved, now) {
    return isObject(saved?.options) ? new Assessment(saved.options, now, saved) : null;
  }
}
