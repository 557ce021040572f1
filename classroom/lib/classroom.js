import { randomBytes } from 'node:crypto';
import http from 'node:http';
import { networkInterfaces } from 'node:os';
import { accountRoutes } from './account-routes.js';
import { Accounts, NO_ACCOUNTS, demoAccounts } from './accounts.js';
import { Bus } from './bus.js';
import { failure } from './envelope.js';
import { Faults } from './faults.js';
import { Front } from './front.js';
import { ownNames, refusalOf } from './gate.js';
import { isLoopback, sendJson } from './http.js';
import { MAX_QUEUED_BYTES } from './limits.js';
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
  // How long a client that polls may stay away before it counts as gone.
  awayMs: 5000,
  // How many bytes may wait for one that is slow.
  maxQueued: MAX_QUEUED_BYTES,
  // The address of a reverse proxy that stands in front.
  proxy: undefined,
  // Names by which it may be asked for, beside its addresses and the machine's own.
  names: [],
  log: () => {},
};

// Longer than clients let a connection rest, so that a request never meets a closing connection.
const KEEP_ALIVE_MS = 65000;

// A peer that has stopped reading does not hold up the end for longer than this.
const CLOSE_GRACE_MS = 2000;

/** Where others reach what listens at a host: at everything that this machine has, that is its first address in a network. */
function reachable(host, address) {
  if (!['0.0.0.0', '::'].includes(address)) return host;
  const own = Object.values(networkInterfaces()).flat().find(({ internal, family }) => !internal && family === 'IPv4');
  return own?.address ?? '127.0.0.1';
}

/** The whole classroom service in one process: REST, event bus and what is in memory. */
export class Classroom {
  #server = http.createServer({ keepAliveTimeout: KEEP_ALIVE_MS });
  #router;
  #bus;
  #names;
  // The account that has been made where nobody has given one: {userId, password}.
  madeAccount = null;

  constructor(options = {}) {
    this.options = { ...DEFAULTS, ...options };
    this.#names = ownNames(this.options.names);
    this.faults = new Faults(this.#server);
    this.front = new Front(this.options.proxy);
    this.accounts = new Accounts(demoAccounts(), this.options.users);
    this.logins = new Logins();
    this.sessions = new Sessions(this.logins);
    this.uploads = new Uploads();
    this.#router = new Router(this, [...accountRoutes, ...sessionRoutes, ...resourceRoutes, ...toolRoutes]);
    this.#bus = new Bus(this.sessions, this.front, this.options);
    this.#server.on('request', (request, response) => this.#request(request, response));
    this.#server.on('upgrade', (request, socket, head) => this.#upgrade(request, socket, head));
  }

  log(line) {
    this.options.log(line);
  }

  /** Resolves with the service's base address once it accepts connections. */
  listen(host = '127.0.0.1', port = 0) {
    return new Promise((resolve, reject) => {
      this.#server.once('error', reject);
      this.#server.listen(port, host, () => {
        const { address, port: taken } = this.#server.address();
        if (!isLoopback(address) || this.front.isProxied) this.#closeToStrangers();
        const shown = reachable(host, address);
        this.#names.add(shown.toLowerCase());
        resolve(`http://${shown.includes(':') ? `[${shown}]` : shown}:${taken}`);
      });
    });
  }

  // The built-in accounts are known to everybody who has read about them.
  #closeToStrangers() {
    const { users } = this.options;
    if (users.length === 0) this.madeAccount = { userId: 'teacher', password: randomBytes(9).toString('base64url') };
    this.accounts = new Accounts(NO_ACCOUNTS, this.madeAccount ? [this.madeAccount] : users);
  }

  /** Ends every connection, after what has been written to it is out. */
  close() {
    const { sockets } = this.faults;
    return new Promise((resolve) => {
      const grace = setTimeout(() => this.faults.cut(), CLOSE_GRACE_MS);
      this.#server.close(() => {
        clearTimeout(grace);
        resolve();
      });
      this.#bus.close();
      for (const socket of sockets) socket.destroySoon();
    });
  }

  #request(request, response) {
    this.front.receive(request);
    const [path, query = ''] = request.url.split('?', 2);
    const begun = Date.now();
    response.on('close', () => {
      this.log(`${request.method} ${path} ${response.statusCode} ${Date.now() - begun}ms`);
    });
    if (this.faults.refuses(request, response)) return;
    const refused = refusalOf(request, this.#names);
    if (refused) {
      request.resume();
      sendJson(response, 403, failure(refused), { headers: { connection: 'close' } });
      return;
    }
    if (this.#bus.handle(request, response, path) || servePage(request, response, path)) return;
    this.#router.handle(request, response, path, new URLSearchParams(query));
  }

  #upgrade(request, socket, head) {
    this.front.receive(request);
    this.log(`${request.method} ${request.url.split('?')[0]} upgrade`);
    // Nobody else listens on a socket that is turned away: its error would end the process.
    socket.on('error', () => {});
    if (this.faults.refusesUpgrade(socket)) return;
    if (refusalOf(request, this.#names)) socket.end('HTTP/1.1 403 Forbidden\r\nConnection: close\r\nContent-Length: 0\r\n\r\n');
    else this.#bus.upgrade(request, socket, head);
  }
}
