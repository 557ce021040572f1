import EventBus from 'vertx3-eventbus-client';
import { answerInWords, answerPoll, answerQuestion, chosenFor, chosenForPoll, responseTime, seedOf } from './answers.js';
import { decodeData, encodeData } from './codec.js';
import { CLOSE_SESSION_ENDED } from './connection.js';
import { OPEN_MS } from './limits.js';
import { post } from './rest.js';

const DEVICE_TYPES = ['tablet', 'laptop', 'phone'];
const FIRST_NAMES = ['Ann', 'Zoë', 'Łukasz', 'Ада', '小明', 'José', 'Bea', 'Tom'];
// As often as the presenter; the client's own default of 5 s is a thousand frames a second from 5,000 learners.
const PING_MS = 60000;
const RETRY_MS = 500;
// Who comes back sends itself a message so often, and after each that it sends. When nothing comes for as long, the line is dead, whatever
// sockjs-client thinks of it: under Node it does not hear of an answer over XHR that is cut short.
const SILENCE_MS = 10000;

const forms = {
  question: {
    type: 'questionResponse',
    answer: (question, index, key, text) => ({
      questionId: question.id,
      questionSetMode: question.questionSetMode,
      ...(text === undefined ? answerQuestion(question, index, key) : chosenFor(question, text)),
    }),
  },
  poll: {
    type: 'pollResponse',
    answer: (poll, index, key, text) => ({
      pollId: poll.id,
      blob: text === undefined ? answerPoll(poll, index, key) : chosenForPoll(poll, text),
    }),
  },
};

/** One simulated device of a learner in one session, from its join to its end. */
export class Learner {
  questions = 0;
  cards = 0;
  answers = 0;
  dialogs = 0;
  heavyNotices = 0;
  decodeFailures = 0;
  // The connection was lost, and the session with it.
  lost = false;
  // What is meant as answers, for each assessment: {title, token, answers}, the answers a Map by question number.
  meant = [];
  // The question that has come last: its id, and when, as a number that grows from one question to the next.
  askedId;
  askedAt = 0;
  #index;
  #settings;
  #bus;
  #leave;
  // The question that is to be answered: {form, document}; gone once it is answered or stopped.
  #open = null;
  #timer;
  #due = false;
  #paused = false;
  #assessment = null;
  #over = false;
  #joined = false;
  #wasIn = false;
  #comeBack;
  #pulse;
  #silence;
  // The last answer, [type, value], while its question is open: it goes out again after a lost connection.
  #answered = null;

  /**
   * settings: reconnect (whether a lost connection is made again), silence (after how many ms it is lost), url, transports (undefined: all),
   * answerAfter in ms, note(text) for what goes wrong, and answerBy: "order" for answers that are the same in each lesson, whatever the
   * questions' ids. With waits, it answers by answer() alone; changed() is called whenever a question comes or goes.
   */
  constructor(index, settings) {
    this.#index = index;
    this.#settings = settings;
    this.userName = `${FIRST_NAMES[index % FIRST_NAMES.length]} ${index + 1}`;
    this.deviceType = DEVICE_TYPES[index % DEVICE_TYPES.length];
    /** Resolves when the learner has left or the session is over. */
    this.ended = new Promise((resolve) => { this.#leave = resolve; });
  }

  /** Resolves once the join message has been sent; rejects when the service or the bus refuses. */
  async join(sessionCode, signal) {
    this.#comeBack = () => this.join(sessionCode, signal);
    const { url, transports } = this.#settings;
    const joined = await post(url, '/tavisto/classroom/session/join', {
      userName: this.userName,
      sessionCode,
      mode: 'learner',
      deviceName: `simulated-${this.#index + 1}`,
      deviceType: this.deviceType,
      userToken: this.token,
    }, { signal });
    this.token = joined.userToken;
    this.sessionToken = joined.sessionToken;
    this.#bus = new EventBus(`${joined.serverUrl}/eventbus`, { transports, vertxbus_ping_interval: PING_MS });
    await this.#opened();
    this.#listen();
    this.#watch();
    this.#publish('join', { userName: this.userName, deviceType: this.deviceType });
    this.#joined = true;
    this.#wasIn = true;
    if (this.#answered) this.#publish(...this.#answered);
    if (this.#assessment && !this.#open) this.#getQuestion();
  }

  /** Whether a question is before it, answered not yet. */
  get hasQuestion() {
    return this.#open !== null;
  }

  /** Whether it may answer that. */
  get isAsked() {
    return this.hasQuestion && !this.#paused;
  }

  /** Whether it is through with an assessment. */
  get hasFinished() {
    return this.#assessment !== null && this.#assessment.current > this.#assessment.count;
  }

  /** Answers that: with the text, or as it likes. */
  answer(text) {
    this.#answer(text);
  }

  leave() {
    this.#over = true;
    this.#drop();
    this.#assessment = null;
    this.#unwatch();
    const live = this.#bus && [EventBus.CONNECTING, EventBus.OPEN].includes(this.#bus.state);
    if (live) this.#bus.close();
    this.#leave();
  }

  #opened() {
    const bus = this.#bus;
    return new Promise((resolve, reject) => {
      const timer = setTimeout(() => {
        reject(new Error('the bus did not open in time'));
        bus.close();
      }, OPEN_MS);
      bus.onerror = (error) => this.#settings.note(`${this.userName}: ${JSON.stringify(error)}`);
      bus.onopen = () => {
        clearTimeout(timer);
        resolve();
      };
      bus.onclose = (event) => {
        clearTimeout(timer);
        reject(new Error(`the bus was closed: ${event.code} ${event.reason}`));
        // Who is on the way back tries again.
        const isTrying = this.#wasIn && !this.#joined && event.code !== CLOSE_SESSION_ENDED;
        if (bus === this.#bus && !isTrying) this.#closed(event.code);
      };
    });
  }

  #closed(code) {
    this.#unwatch();
    if (this.#over || !this.#joined || code === CLOSE_SESSION_ENDED) return this.leave();
    if (this.#settings.reconnect) return this.#retryLater();
    this.#settings.note(`${this.userName} has lost the service`);
    return this.#loseAll();
  }

  #loseAll() {
    this.lost = true;
    this.leave();
  }

  #retryLater() {
    // Not all at once, when a whole class has lost its connection.
    this.#joined = false;
    const timer = setTimeout(() => this.#retry(), RETRY_MS * (1 + Math.random()));
    this.ended.then(() => clearTimeout(timer));
  }

  async #retry() {
    try {
      await this.#comeBack();
    } catch (error) {
      if (this.#over) return;
      if (/^session\.error\./.test(error.message)) this.#loseAll();
      else this.#retryLater();
    }
  }

  #watch() {
    if (this.#settings.reconnect) this.#pulse = setInterval(() => this.#callBack(), this.#silenceLimit);
  }

  #unwatch() {
    clearInterval(this.#pulse);
    this.#heard();
  }

  get #silenceLimit() {
    return this.#settings.silence ?? SILENCE_MS;
  }

  // What comes back has followed all that was sent before.
  #callBack() {
    const bus = this.#bus;
    if (bus.state !== EventBus.OPEN) return;
    bus.publish(this.#own, { type: 'here' });
    this.#silence ??= setTimeout(() => bus.close(), this.#silenceLimit);
  }

  #heard() {
    clearTimeout(this.#silence);
    this.#silence = undefined;
  }

  get #own() {
    return `${this.sessionToken}.user.${this.token}`;
  }

  #listen() {
    const root = this.sessionToken;
    for (const address of [root, `${root}.learner`, this.#own]) {
      this.#bus.registerHandler(address, (error, message) => this.#receive(error, message));
    }
  }

  #publish(type, value) {
    if (this.#bus.state !== EventBus.OPEN) return false;
    const address = `${this.sessionToken}.presenter`;
    this.#bus.publish(address, { from: this.token, type, data: encodeData(value) });
    if (this.#settings.reconnect) this.#callBack();
    return true;
  }

  #receive(error, message) {
    this.#heard();
    const type = message?.body?.type;
    const handle = error ? undefined : Learner.#handlers.get(type);
    if (!handle) return;
    try {
      handle(this, decodeData(message.body.data));
    } catch (reason) {
      this.decodeFailures += 1;
      this.#settings.note(`${this.userName}: "${type}" cannot be read: ${reason.message}`);
    }
  }

  // A Map, and one for all learners: a type such as "constructor" is not found in it.
  static #handlers = new Map(Object.entries({
    questionStart: (learner, question) => learner.#ask(forms.question, question),
    poll: (learner, poll) => learner.#ask(forms.poll, poll),
    // The id is not looked at: a question is stopped by the id of its poll, which learners never see.
    pollStop: (learner) => learner.#drop(),
    pause: (learner) => { learner.#paused = true; },
    resume: (learner) => learner.#resume(),
    heavy: (learner) => { learner.heavyNotices += 1; },
    showCard: (learner) => { learner.cards += 1; },
    dialogShow: (learner) => { learner.dialogs += 1; },
    questionSetReview: (learner) => { learner.dialogs += 1; },
    assessmentStart: (learner, options) => learner.#startAssessment(options),
    assessmentStop: (learner) => learner.#stopAssessment(),
    disconnect: (learner) => learner.leave(),
  }));

  #ask(form, document) {
    // The same again, to who has answered it: so that nobody's answer is missing.
    if (this.#settings.reconnect && document.id !== undefined && this.#answered?.[2] === document.id) {
      this.#publish(...this.#answered);
      if (this.#isOfAssessment(document) && !this.#open) this.#getQuestion();
      return;
    }
    this.#drop();
    this.questions += 1;
    if (this.#isOfAssessment(document)) {
      this.meant.at(-1).answers.set(document.questionNumber, answerInWords(document, this.#index, this.#keyOf(document)));
    }
    this.#open = { form, document };
    [this.askedId, this.askedAt] = [document.id, performance.now()];
    this.#settings.changed?.();
    const { answerAfter = 0, waits } = this.#settings;
    if (waits) return;
    if (answerAfter > 0) this.#timer = setTimeout(() => this.#answerDue(), answerAfter);
    else this.#answerDue();
  }

  // A new question starts unpaused, as a new poll does.
  #drop() {
    clearTimeout(this.#timer);
    this.#answered = null;
    this.#open = null;
    this.#due = false;
    this.#paused = false;
    this.#settings.changed?.();
  }

  #resume() {
    this.#paused = false;
    this.#settings.changed?.();
    if (this.#due) this.#answer();
  }

  #answerDue() {
    this.#due = true;
    if (!this.#paused) this.#answer();
  }

  #answer(text) {
    const { form, document } = this.#open;
    const answer = form.answer(document, this.#index, this.#keyOf(document), text);
    this.#drop();
    const time = responseTime(seedOf(this.#index, this.#keyOf(document)), this.#settings.answerAfter);
    const value = {
      ...answer,
      responseTime: time,
      studentAssessmentToken: this.#assessment?.token,
    };
    const sent = this.#publish(form.type, value);
    if (sent || this.#settings.reconnect) this.answers += 1;
    this.#answered = [form.type, value, document.id];
    this.#goOn(document);
  }

  #keyOf({ id }) {
    return this.#settings.answerBy === 'order' ? `question ${this.questions}` : id;
  }

  #isOfAssessment({ questionSetMode }) {
    return this.#assessment !== null && questionSetMode === 'Assessment';
  }

  #startAssessment({ assessmentToken, title = '', questionCount = 1, startingQuestionNumber = 0 }) {
    this.#assessment = { token: assessmentToken, count: questionCount, current: startingQuestionNumber || 1 };
    this.meant.push({ title, token: assessmentToken, answers: new Map() });
    this.#getQuestion();
  }

  #stopAssessment() {
    this.#assessment = null;
    this.#drop();
  }

  // A poll in between has taken the place of the question that was open: that one is asked for again.
  #goOn(answered) {
    if (!this.#assessment) return;
    if (this.#isOfAssessment(answered)) this.#assessment.current += 1;
    this.#getQuestion();
  }

  #getQuestion() {
    const { token, current, count } = this.#assessment;
    if (current <= count) this.#publish('questionGet', { questionNumber: current, assessmentToken: token });
  }
}
