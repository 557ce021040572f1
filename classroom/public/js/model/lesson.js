import { Activity } from './activity.js';
import { responseTo } from './answer.js';
import { Assessment } from './assessment.js';
import { resultsFrom } from './results.js';
import { isObject, textOf, wholeNumber } from './text.js';

const MOST_SECONDS = 24 * 3600;

// What is there to be seen with each thing that a lesson shows.
const SUBJECTS = {
  coming: 'assessment',
  question: 'activity',
  stopped: 'activity',
  card: 'card',
  review: 'review',
  results: 'results',
  finished: 'assessment',
  over: 'assessment',
};

/**
 * What a learner has on the page, and what becomes of it with each message from the presenter and each thing that
 * the learner does. Knows nothing of the page.
 *
 * `shows` is one of: waiting, coming (a question has been asked for), question, stopped, card, review, results (of a
 * poll), finished (the end of an assessment has been reached), over (it has been stopped).
 */
export class Lesson {
  shows = 'waiting';
  activity = null;
  assessment = null;
  card = null;
  review = null;
  results = null;
  // A text over everything else: {text, dismissible}.
  notice = null;
  paused = false;
  // A large picture has been announced.
  expectsPicture = false;
  #publish;
  #changed;
  #now;
  #drafts;

  /**
   * publish(type, value) resolves with whether it has gone out; changed() is called after each change. drafts (get(id),
   * set(id, draft)) keep what is typed and not sent.
   */
  constructor({ publish, changed, now = Date.now, drafts = new Map() }) {
    this.#publish = publish;
    this.#changed = changed;
    this.#now = now;
    this.#drafts = drafts;
  }

  /** What to do with the presenter's messages, by type. */
  handlers = {
    questionStart: (document) => this.#ask('question', document),
    poll: (document) => this.#ask('poll', document),
    // The id is not looked at: a question is stopped by the id of its poll, which learners never see.
    pollStop: () => this.#stop(),
    countdown: (left) => this.#countDown(left),
    pause: () => this.#pause(),
    resume: () => this.#resume(),
    heavy: () => this.#update({ expectsPicture: true }),
    showCard: (card) => this.#showCard(card),
    dialogShow: (dialog) => this.#showDialog(dialog),
    questionSetReview: (review) => this.#showReview(review),
    assessmentStart: (options) => this.#startAssessment(options),
    assessmentStop: (which) => this.#stopAssessment(which),
  };

  get mayAnswer() {
    const { activity, assessment } = this;
    if (!activity || activity.closed || activity.sending || this.paused || assessment?.timeUp) return false;
    return activity.answer === null || activity.changing;
  }

  get mayChangeAnswer() {
    const { activity, assessment } = this;
    if (!activity?.answer || activity.closed || assessment?.timeUp) return false;
    return activity.document.feedBack?.allowResubmit !== false && (assessment?.mayChangeAnswers ?? true);
  }

  get mayNavigate() {
    const { activity, assessment } = this;
    if (!assessment || assessment.timeUp || assessment.over || this.paused) return false;
    return assessment.mayNavigate || this.shows === 'review' || activity?.document.navigable === true;
  }

  get mayGoOn() {
    const { activity, assessment } = this;
    if (!assessment || assessment.timeUp || this.paused) return false;
    return (activity?.answer ?? null) !== null || activity?.closed || assessment.maySkip || this.mayNavigate;
  }

  /** The seconds until the question is closed; null when nobody knows. */
  get closesIn() {
    const { closesAt, closed } = this.activity ?? {};
    return closesAt && !closed ? Math.max(0, Math.ceil((closesAt - this.#now()) / 1000)) : null;
  }

  // --- what the learner does ---

  keepDraft(draft) {
    if (!this.activity) return;
    this.activity.draft = draft;
    if (this.activity.id) this.#drafts.set(this.activity.id, draft);
  }

  async answer(answer) {
    const { activity, assessment } = this;
    if (!this.mayAnswer) return;
    Object.assign(activity, { sending: true, failed: false });
    this.#changed();
    const token = activity.number > 0 ? assessment?.token : undefined;
    const { type, value } = responseTo(activity, answer, Math.round(activity.watch.elapsed), token);
    const sent = await this.#publish(type, value).catch(() => false);
    Object.assign(activity, { sending: false, failed: !sent });
    if (sent) Object.assign(activity, { answer, sent: { type, value }, draft: null, changing: false, wasAnsweredBefore: false });
    if (sent && activity.id) this.#drafts.set(activity.id, null);
    this.#changed();
  }

  /** The answer once more, as it was: it may have been lost with a connection, or have met nobody. */
  sendAgain() {
    const { sent, closed } = this.activity ?? {};
    if (sent && !closed) this.#publish(sent.type, sent.value).catch(() => false);
  }

  changeAnswer() {
    if (!this.mayChangeAnswer) return;
    this.activity.changing = true;
    this.#changed();
  }

  /** Asks the presenter for a question of the assessment. */
  goTo(number) {
    const { assessment } = this;
    if (!assessment) return;
    assessment.current = number;
    this.activity?.watch.pause();
    this.#update({ shows: 'coming', card: null, review: null });
    this.askAgain();
  }

  askAgain() {
    const { token, current } = this.assessment;
    this.#publish('questionGet', { questionNumber: current, assessmentToken: token }).catch(() => false);
  }

  goOn() {
    const { assessment, activity } = this;
    // A poll that came in between is no step on the way.
    if (activity?.number === 0) this.goTo(assessment.current);
    else if (assessment.current < assessment.count) this.goTo(assessment.current + 1);
    else this.#update({ shows: 'finished' });
  }

  dismiss() {
    this.#update({ notice: null });
  }

  /** From a card or from results back to the question that is still open. */
  backToQuestion() {
    this.#update({ shows: 'question', card: null, results: null });
  }

  /** To be called now and then while there is a time limit. */
  tick() {
    const { assessment } = this;
    if (!assessment || assessment.timeUp || assessment.over || assessment.remaining !== 0) return;
    assessment.timeUp = true;
    this.#update({ shows: 'finished' });
  }

  // --- what the presenter does ---

  #update(changes) {
    Object.assign(this, changes);
    this.#changed();
  }

  // A question sent once more, in an assessment on the way back to it, is found as it was left.
  #ask(kind, document) {
    if (!isObject(document)) return;
    if (this.assessment?.over) this.assessment = null;
    const isOurs = this.assessment !== null && document.questionSetMode === 'Assessment';
    const number = isOurs ? this.assessment.numberOf(document) : 0;
    this.activity = this.#asLeft(new Activity({ kind, document, number }, this.#now));
    if (isOurs) this.assessment.show(this.activity);
    if (!this.activity.wasAnsweredBefore) this.sendAgain();
    this.#unpause();
    this.#update({ shows: 'question', card: null, review: null, results: null, notice: null, expectsPicture: false });
  }

  #asLeft(activity) {
    const { document, number } = activity;
    const known = [this.activity, this.assessment?.at(number)].find((one) => activity.isSameAs(one));
    if (!known) return Object.assign(activity, { draft: this.#drafts.get(activity.id) ?? null });
    return new Activity({ ...known.toJSON(), document, number, closed: false, wasAnsweredBefore: undefined }, this.#now);
  }

  #stop() {
    this.#unpause();
    if (this.activity) this.activity.closed = true;
    this.#update({ shows: this.shows === 'question' ? 'stopped' : this.shows, notice: null });
  }

  // Of the question that is on: devices are not told the id of each poll.
  #countDown(left) {
    if (!this.activity || this.activity.closed) return;
    this.activity.closesAt = this.#now() + 1000 * wholeNumber(left?.seconds, 0, MOST_SECONDS);
    this.#changed();
  }

  #watches() {
    return [this.activity?.watch, this.assessment?.watch].filter(Boolean);
  }

  #pause() {
    this.#watches().forEach((watch) => watch.pause());
    this.#update({ paused: true });
  }

  #unpause() {
    this.#watches().forEach((watch) => watch.resume());
    this.paused = false;
  }

  #resume() {
    this.#unpause();
    this.#changed();
  }

  #showCard(card) {
    if (isObject(card)) this.#update({ shows: 'card', card, notice: null, expectsPicture: false });
  }

  #showDialog({ text, isDismissible, results }) {
    const drawn = resultsFrom(results);
    if (drawn) this.#update({ shows: 'results', results: drawn, card: null, review: null, notice: null });
    else this.#update({ notice: { text: textOf(text), dismissible: isDismissible === true } });
  }

  #showReview({ text }) {
    this.#update({ shows: 'review', review: textOf(text), notice: null });
  }

  #startAssessment(options) {
    if (!isObject(options)) return;
    this.assessment = new Assessment(options, this.#now);
    Object.assign(this, { activity: null, notice: null, paused: false });
    this.goTo(this.assessment.current);
  }

  #stopAssessment(which) {
    const { assessment } = this;
    if (!assessment || (which?.assessmentToken && which.assessmentToken !== assessment.token)) return;
    assessment.over = true;
    this.paused = false;
    this.#update({ shows: 'over', activity: null, card: null, review: null, notice: null });
  }

  // --- over a reload ---

  toJSON() {
    const { shows, activity, assessment, card, review, results, notice, paused } = this;
    return { shows, activity, assessment, card, review, results, notice, paused };
  }

  restore(saved) {
    if (!isObject(saved)) return;
    const { card, review, notice, paused } = saved;
    Object.assign(this, { card, review, results: resultsFrom(saved.results), notice, paused });
    this.assessment = Assessment.from(saved.assessment, this.#now);
    this.activity = isObject(saved.activity?.document) ? new Activity(saved.activity, this.#now) : null;
    if (this.assessment && this.activity?.number > 0) this.assessment.keep(this.activity);
    this.shows = this[SUBJECTS[saved.shows]] ? saved.shows : 'waiting';
    this.#changed();
  }
}
