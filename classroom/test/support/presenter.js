import { decodeData, encodeData } from '../../lib/codec.js';
import { BusClient } from './bus-client.js';
import { startSession } from './classroom.js';

/** A presenter with a started session, as a host would hold it, speaking the bus by hand. */
export class Presenter {
  /** Resolves with a presenter that is joined and listens at its three addresses. */
  static async open(t, url) {
    const presenter = new Presenter();
    Object.assign(presenter, await startSession(url));
    const { userToken } = await presenter.host.join(presenter.code, 'presenter');
    presenter.userToken = userToken;
    const root = presenter.token;
    presenter.bus = await BusClient.open(t, url, [root, `${root}.presenter`, `${root}.presenter.${userToken}`]);
    return presenter;
  }

  /** A compressed publish: the data is given as a value. */
  publish(type, value, place = '') {
    this.bus.publish(`${this.token}${place}`, { from: this.userToken, type, data: encodeData(value) });
  }

  /** A versioned message object, as questions and assessments travel in. */
  publishObject(type, value, place = '') {
    const body = { data: encodeData(value), from: this.userToken, sourceSystem: 'Lumora', type, version: '3.0.0' };
    this.bus.publish(`${this.token}${place}`, body);
  }

  ask(question, place) {
    this.publishObject('questionStart', { questionSetMode: 'Poll', activityOptions: [], ...question }, place);
  }

  /** The next message of a type from a learner, {from, value}. */
  async next(type) {
    const body = await this.bus.nextBody((one) => one.type === type);
    return { from: body.from, value: decodeData(body.data) };
  }

  async all(type, count) {
    const messages = [];
    while (messages.length < count) messages.push(await this.next(type));
    return messages;
  }

  /** Ends the session as a host does: the goodbye first, then the service. */
  async stop() {
    this.publish('disconnect', '');
    await this.bus.settled(this.token);
    await this.host.stop(this.token);
  }
}
