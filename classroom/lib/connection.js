import { Allowance } from './allowance.js';
import {
  ALLOWED_BYTES, ALLOWED_FRAMES, MAX_DEVICE_FRAME, MAX_FRAME, MAX_QUEUED_BYTES, MAX_QUEUED_MESSAGES, MAX_STRANGER_FRAME,
} from './limits.js';

export const CLOSE_SESSION_ENDED = 3001;
export const CLOSE_TOO_SLOW = 3002;
export const CLOSE_SHUTDOWN = 3003;
export const CLOSE_TOO_MANY = 3004;
export const CLOSE_TOO_MUCH = 3005;

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
  // The sessions at whose presenter's address it listens, set by the bus.
  presents = new Set();
  // The user whose path to the bus it has come by, behind a proxy.
  presenter = undefined;
  #socket;
  #backlog = new Backlog();
  #frames = new Allowance(ALLOWED_FRAMES);
  #bytes = new Allowance(ALLOWED_BYTES);
  #maxQueued;

  constructor(socket, maxQueued = MAX_QUEUED_BYTES) {
    this.#socket = socket;
    this.#maxQueued = maxQueued;
  }

  get remoteAddress() {
    return this.#socket.remoteAddress;
  }

  get isPresenter() {
    return this.presents.size > 0;
  }

  /** The longest frame that it may send. */
  get frameLimit() {
    if (this.isPresenter) return MAX_FRAME;
    return this.users.size > 0 ? MAX_DEVICE_FRAME : MAX_STRANGER_FRAME;
  }

  /** Whether one more frame of this length is within what it may send. */
  maySend(length) {
    if (this.isPresenter) return true;
    return length <= this.frameLimit && this.#frames.take(1) && this.#bytes.take(length);
  }

  /** It has sent more than its share lately. */
  get floods() {
    return !this.isPresenter && (this.#frames.isLow || this.#bytes.isLow);
  }

  /** Half of what may wait for it does. */
  get isBehind() {
    const { messages, bytes } = this.#backlog.measure(this.#socket);
    return messages > MAX_QUEUED_MESSAGES / 2 || bytes > this.#maxQueued / 2;
  }

  /** Sends a frame that is already text; a connection that does not keep up is closed. */
  deliver(text) {
    this.#socket.write(text);
    const { messages, bytes } = this.#backlog.measure(this.#socket);
    if (messages > MAX_QUEUED_MESSAGES || bytes > this.#maxQueued) this.close(CLOSE_TOO_SLOW, 'too slow');
  }

  fail(reason) {
    this.deliver(JSON.stringify({ type: 'err', body: reason }));
  }

  /** What has been delivered before still reaches the far end, also one that polls. */
  close(code, reason) {
    this.#socket.close(code, reason);
  }
}
