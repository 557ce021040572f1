import SockJS from 'sockjs-client';

/** A device on the bus that keeps what it receives until it is asked for. */
export class BusClient {
  frames = [];
  #waiting = [];

  constructor(url, options = {}) {
    this.socket = new SockJS(`${url}/eventbus`, null, options);
    this.closed = new Promise((resolve) => { this.socket.onclose = resolve; });
    this.socket.onmessage = ({ data }) => this.#received(JSON.parse(data));
  }

  /** Opens the bus and registers the addresses; ends with the test. */
  static async open(t, url, addresses = [], options = {}) {
    const client = new BusClient(url, options);
    t.after(() => client.socket.close());
    await new Promise((resolve, reject) => {
      client.socket.onopen = resolve;
      client.closed.then((event) => reject(new Error(`not opened: ${event.code} ${event.reason}`)));
    });
    for (const address of addresses) client.register(address);
    if (addresses.length > 0) await client.settled(addresses[0]);
    return client;
  }

  send(frame) {
    this.socket.send(typeof frame === 'string' ? frame : JSON.stringify(frame));
  }

  register(address) {
    this.send({ type: 'register', address });
  }

  unregister(address) {
    this.send({ type: 'unregister', address });
  }

  publish(address, body, headers) {
    this.send({ type: 'publish', address, body, headers });
  }

  /** The next received frame that fits, which is taken out; waits for it. */
  next(fits = () => true) {
    const at = this.frames.findIndex(fits);
    if (at >= 0) return Promise.resolve(this.frames.splice(at, 1)[0]);
    return new Promise((resolve) => { this.#waiting.push({ fits, resolve }); });
  }

  /** The body of the next message that fits; rejects when an error comes before it. */
  async nextBody(fits = () => true) {
    const frame = await this.next(({ type, body }) => type === 'err' || fits(body));
    if (frame.type === 'err') throw new Error(`the bus has answered ${frame.body}`);
    return frame.body;
  }

  /** Resolves when the server has dealt with all that was sent before: frames of a connection keep their order. */
  async settled(address) {
    const mark = `mark ${Math.random()}`;
    const own = `${address.split('.')[0]}.mark.${Math.random()}`;
    this.register(own);
    this.publish(own, mark);
    await this.nextBody((body) => body === mark);
    this.unregister(own);
  }

  #received(frame) {
    const at = this.#waiting.findIndex(({ fits }) => fits(frame));
    if (at >= 0) this.#waiting.splice(at, 1)[0].resolve(frame);
    else this.frames.push(frame);
  }
}
