import http from 'node:http';
import { accountRoutes } from './account-routes.js';
import { Accounts } from './accounts.js';
import { Bus } from './bus.js';
import { Logins } from './logins.js';
import { servePage } from './pages.js';
import { resourceRoutes } from './resource-routes.js';
import { Router } from './router.js';
import { sessionRoutes } from './session-routes.js';
import { Sessions } from './sessions.js';
import { toolRoutes } from './tool-routes.js';
import { Uploads } from './uploads.js';

const DEFAULTS = {
  gzip: false,
  websocket: true,
  sockjsTransports: ['websocket', 'xhr-streaming', 'xhr-polling'],
  users: [],
  log: () => {},
};

// Longer than clients let a connection rest, so that a request never meets a closing connection.
const KEEP_ALIVE_MS = 65000;

// A peer that has stopped reading does not hold up the end for longer than this.
const CLOSE_GRACE_MS = 2000;

/** The whole classroom service in one process: REST, event bus and what is in memory. */
export class Classroom {
  #server = http.createServer({ keepAliveTimeout: KEEP_ALIVE_MS });
  #sockets = new Set();
  #router;
  #bus;

  constructor(options = {}) {
    this.options = { ...DEFAULTS, ...options };
    this.accounts = new Accounts(undefined, this.options.users);
    this.logins = new Logins();
    this.sessions = new Sessions();
    this.uploads = new Uploads();
    this.#router = new Router(this, [...accountRoutes, ...sessionRoutes, ...resourceRoutes, ...toolRoutes]);
    this.#bus = new Bus(this.sessions, { websocket: this.options.websocket });
    this.#server.on('request', (request, response) => this.#request(request, response));
    this.#server.on('upgrade', (request, socket, head) => this.#upgrade(request, socket, head));
    this.#server.on('connection', (socket) => this.#track(socket));
  }

  log(line) {
    this.options.log(line);
  }

  /** Resolves with the service's base address once it accepts connections. */
  listen(host = '127.0.0.1', port = 0) {
    return new Promise((resolve, reject) => {
      this.#server.once('error', reject);
      this.#server.listen(port, host, () => {
        const shown = host.includes(':') ? `[${host}]` : host;
        resolve(`http://${shown}:${this.#server.address().port}`);
      });
    });
  }

  /** Ends every connection, after what has been written to it is out. */
  close() {
    return new Promise((resolve) => {
      const grace = setTimeout(() => this.#sockets.forEach((socket) => socket.destroy()), CLOSE_GRACE_MS);
      this.#server.close(() => {
        clearTimeout(grace);
        resolve();
      });
      this.#bus.close();
      for (const socket of this.#sockets) socket.destroySoon();
    });
  }

  #track(socket) {
    this.#sockets.add(socket);
    socket.on('close', () => this.#sockets.delete(socket));
  }

  #request(request, response) {
    const [path, query = ''] = request.url.split('?', 2);
    const begun = Date.now();
    response.on('close', () => {
      this.log(`${request.method} ${path} ${response.statusCode} ${Date.now() - begun}ms`);
    });
    if (this.#bus.handle(request, response, path) || servePage(request, response, path)) return;
    this.#router.handle(request, response, path, new URLSearchParams(query));
  }

  #upgrade(request, socket, head) {
    this.log(`${request.method} ${request.url.split('?')[0]} upgrade`);
    this.#bus.upgrade(request, socket, head);
  }
}
