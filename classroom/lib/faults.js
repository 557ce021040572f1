// What a classroom does wrong when it is told to: a host's own tests want to see what the host does then.

import { failure } from './envelope.js';
import { sendJson } from './http.js';

const UPGRADE_REFUSED = 'HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nContent-Length: 0\r\n\r\n';

function freeze(socket) {
  socket.cork();
  socket.pause();
}

function thaw(socket) {
  socket.uncork();
  socket.resume();
}

/** The faults of one server, which are told of every socket, request and upgrade. */
export class Faults {
  #server;
  #sockets = new Set();
  #address = null;
  #stalled = false;
  #refusal = null;

  constructor(server) {
    this.#server = server;
    server.on('connection', (socket) => this.#track(socket));
  }

  get sockets() {
    return this.#sockets;
  }

  /** Answers the request, where requests are refused. */
  refuses(request, response) {
    if (!this.#refusal) return false;
    request.resume();
    sendJson(response, 503, failure(this.#refusal));
    return true;
  }

  /** The same for an upgrade. */
  refusesUpgrade(socket) {
    if (this.#refusal) socket.end(UPGRADE_REFUSED);
    return this.#refusal !== null;
  }

  /** Refuses every request and every new connection to the bus, until mend(). */
  refuse(key) {
    this.#refusal = key;
  }

  /** Reads nothing and writes nothing, but takes connections, until mend(). */
  stall() {
    if (this.#stalled) return;
    this.#stalled = true;
    this.#sockets.forEach(freeze);
  }

  /** Cuts all connections; new ones can be made. */
  cut() {
    this.#sockets.forEach((socket) => socket.destroy());
  }

  /** Cuts all connections, and takes none, until mend(). */
  goDown() {
    this.#address ??= this.#server.address();
    this.#server.close();
    this.cut();
  }

  /** Resolves when everything is as it should be again. */
  async mend() {
    this.#refusal = null;
    if (this.#stalled) this.#sockets.forEach(thaw);
    this.#stalled = false;
    if (!this.#address) return;
    const { port, address } = this.#address;
    this.#address = null;
    await new Promise((resolve, reject) => {
      this.#server.once('error', reject);
      this.#server.listen(port, address, resolve);
    });
  }

  #track(socket) {
    this.#sockets.add(socket);
    socket.on('close', () => this.#sockets.delete(socket));
    // The server has only just asked for what comes, which begins with the next turn.
    if (this.#stalled) process.nextTick(() => this.#stalled && freeze(socket));
  }
}
