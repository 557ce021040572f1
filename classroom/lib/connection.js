import { MAX_QUEUED_BYTES, MAX_QUEUED_MESSAGES } from './limits.js';

export const CLOSE_SESSION_ENDED = 3001;
export const CLOSE_TOO_SLOW = 3002;
export const CLOSE_SHUTDOWN = 3003;
export const CLOSE_TOO_MANY = 3004;

// What still waits for a connection. The SockJS server has no public measure of it: text that waits for
// the next poll is in its session's buffer, the rest in the socket.
class Backlog {
  #texts = [];
  #counted = 0;
  #chars = 0;

  // The server begins a new buffer when it has handed one over, so each text is counted once.
  measure({ _session: session }) {
    const texts = session?.send_buffer ?? [];
    if (texts !== this.#texts) [this.#texts, this.#counted, this.#chars] = [texts, 0, 0];
    for (; this.#counted < texts.length; this.#counted += 1) this.#chars += texts[this.#counted].length;
    const wire = session?.recv?.connection ?? session?.recv?.response;
    return { messages: texts.length, bytes: this.#chars + (wire?.writableLength ?? 0) };
  }
}

/** One device or presenter on the bus, over whatever transport. */
export class Connection {
  addresses = new Set();
  // Set by the presence list: the users that are at this connection.
  users = new Set();
  #socket;
  #backlog = new Backlog();

  constructor(socket) {
    this.#socket = socket;
  }

  get remoteAddress() {
    return this.#socket.remoteAddress;
  }

  /** Sends a frame that is already text; a connection that does not keep up is closed. */
  deliver(text) {
    this.#socket.write(text);
    const { messages, bytes } = this.#backlog.measure(this.#socket);
    if (messages > MAX_QUEUED_MESSAGES || bytes > MAX_QUEUED_BYTES) this.close(CLOSE_TOO_SLOW, 'too slow');
  }

  fail(reason) {
    this.deliver(JSON.stringify({ type: 'err', body: reason }));
  }

  /** What has been delivered before still reaches the far end, also one that polls. */
  close(code, reason) {
    this.#socket.close(code, reason);
  }
}
