import { MAX_QUEUED_BYTES, MAX_QUEUED_MESSAGES } from './limits.js';

export const CLOSE_SESSION_ENDED = 3001;
export const CLOSE_TOO_SLOW = 3002;
export const CLOSE_SHUTDOWN = 3003;
export const CLOSE_TOO_MANY = 3004;

// What still waits for a connection. The SockJS server has no public measure of it: text that waits for
// the next poll is in its session's buffer, the rest in the socket.
function backlog(socket) {
  const session = socket._session;
  const messages = session?.send_buffer ?? [];
  const wire = session?.recv?.connection ?? session?.recv?.response;
  const bytes = messages.reduce((sum, text) => sum + text.length, wire?.writableLength ?? 0);
  return { messages: messages.length, bytes };
}

/** One device or presenter on the bus, over whatever transport. */
export class Connection {
  addresses = new Set();
  // Set by the presence list: the users that are at this connection.
  users = new Set();
  #socket;

  constructor(socket) {
    this.#socket = socket;
  }

  get remoteAddress() {
    return this.#socket.remoteAddress;
  }

  /** Sends a frame that is already text; a connection that does not keep up is closed. */
  deliver(text) {
    this.#socket.write(text);
    const { messages, bytes } = backlog(this.#socket);
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
