import sockjs from 'sockjs';
import { Addresses } from './addresses.js';
import { BoundedMap } from './bounded.js';
import {
  CLOSE_SESSION_ENDED, CLOSE_SHUTDOWN, CLOSE_TOO_MANY, Connection,
} from './connection.js';
import {
  MAX_ADDRESSES_PER_CONNECTION, MAX_ADDRESS_LENGTH, MAX_CONNECTIONS, MAX_FRAME, MAX_PENDING_REPLIES,
} from './limits.js';
import { mayRegister, maySend } from './permissions.js';
import { Presence } from './presence.js';

const PREFIX = '/eventbus';

function parseFrame(text) {
  if (typeof text !== 'string') return undefined;
  try {
    const frame = JSON.parse(text);
    return frame !== null && typeof frame === 'object' && !Array.isArray(frame) ? frame : undefined;
  } catch {
    return undefined;
  }
}

const presenterAddress = (session) => `${session.token}.presenter`;

const isAddress = (value) => typeof value === 'string' && value !== '';

function received(address, { body = null, headers, replyAddress }) {
  const sent = headers && Object.keys(headers).length > 0 ? headers : undefined;
  return JSON.stringify({ type: 'rec', address, body, headers: sent, replyAddress });
}

/** The event bus: SockJS connections that register, unregister, publish, send and ping. */
export class Bus {
  #sessions;
  #sockjsHandler;
  #connections = new Set();
  #addresses = new Addresses();
  #replies = new BoundedMap(MAX_PENDING_REPLIES);
  #presence = new Presence((session, body) => this.#publish(presenterAddress(session), { body }));
  #handlers = {
    register: (connection, frame, session) => this.#register(connection, frame, session),
    unregister: (connection, frame, session) => this.#unregister(connection, frame, session),
    publish: (connection, frame) => this.#publish(frame.address, frame),
    send: (connection, frame) => this.#send(connection, frame),
  };

  constructor(sessions, { websocket = true } = {}) {
    this.#sessions = sessions;
    sessions.on('stopped', (session) => this.#endSession(session));
    const server = sockjs.createServer({
      prefix: PREFIX,
      websocket,
      log: () => {},
      faye_server_options: { maxLength: MAX_FRAME },
      // The script of the iframe transports: never from elsewhere.
      sockjs_url: '/vendor/sockjs.js',
    });
    server.on('connection', (socket) => this.#connected(socket));
    this.#sockjsHandler = server.middleware();
  }

  /** True when the path is one of the bus, and the request has been taken. */
  handle(request, response, path) {
    if (path !== PREFIX && !path.startsWith(`${PREFIX}/`)) return false;
    let size = 0;
    request.on('data', (chunk) => {
      size += chunk.length;
      if (size > MAX_FRAME) request.destroy();
    });
    this.#sockjsHandler(request, response);
    return true;
  }

  /** Takes an upgrade to a WebSocket; any other upgrade is turned away. */
  upgrade(request, socket, head) {
    // Nobody else listens on a socket that is turned away: its error would end the process.
    socket.on('error', () => {});
    const path = request.url.split('?')[0];
    const wanted = request.method === 'GET' && path.startsWith(`${PREFIX}/`) && /\/websocket\/?$/.test(path);
    if (wanted) this.#sockjsHandler(request, socket, head);
    else socket.end('HTTP/1.1 400 Bad Request\r\nConnection: close\r\nContent-Length: 0\r\n\r\n');
  }

  close() {
    for (const connection of this.#connections) connection.close(CLOSE_SHUTDOWN, 'classroom closed');
  }

  #connected(socket) {
    // The SockJS server gives null for a connection that was gone before it was announced.
    if (!socket) return;
    const connection = new Connection(socket);
    if (this.#connections.size >= MAX_CONNECTIONS) {
      connection.close(CLOSE_TOO_MANY, 'too many connections');
      return;
    }
    this.#connections.add(connection);
    socket.on('data', (text) => this.#received(connection, text));
    socket.on('close', () => this.#ended(connection));
  }

  #received(connection, text) {
    const frame = parseFrame(text);
    if (!frame) return connection.fail('invalid_json');
    if (typeof frame.type !== 'string') return connection.fail('missing_type');
    if (frame.type === 'ping') return undefined;
    if (!Object.hasOwn(this.#handlers, frame.type)) return connection.fail('unknown_type');
    if (!isAddress(frame.address)) return connection.fail('missing_address');
    if (frame.address.length > MAX_ADDRESS_LENGTH) return connection.fail('address_too_long');
    if (this.#reply(frame)) return undefined;
    const session = this.#sessions.owning(frame.address);
    if (!session || !this.#allows(session, connection, frame)) return connection.fail('access_denied');
    return this.#handlers[frame.type](connection, frame, session);
  }

  #allows(session, connection, frame) {
    if (frame.type === 'register') return mayRegister(session, connection, frame);
    return frame.type === 'unregister' || maySend(session, connection, frame, this.#addresses.all(frame.address));
  }

  #register(connection, { address }, session) {
    if (connection.addresses.size >= MAX_ADDRESSES_PER_CONNECTION) {
      connection.fail('max_handlers_reached');
      return;
    }
    this.#addresses.add(address, connection);
    session.connections.add(connection);
    if (address === presenterAddress(session)) this.#sessions.addPresenter(session, connection);
    this.#presence.registered(session, address, connection);
  }

  #unregister(connection, { address }, session) {
    this.#addresses.remove(address, connection);
    if (address === presenterAddress(session)) session.presenters.delete(connection);
    this.#presence.unregistered(address, connection);
  }

  #publish(address, { body, headers }) {
    const text = received(address, { body, headers });
    for (const listener of this.#addresses.all(address)) listener.deliver(text);
  }

  #send(connection, { address, body, headers, replyAddress }) {
    const wantsReply = isAddress(replyAddress) && replyAddress.length <= MAX_ADDRESS_LENGTH;
    const listener = this.#addresses.next(address);
    if (listener) {
      if (wantsReply) this.#replies.set(replyAddress, connection);
      listener.deliver(received(address, { body, headers, replyAddress: wantsReply ? replyAddress : undefined }));
    } else if (wantsReply) {
      const message = `No handlers for address ${address}`;
      const noHandlers = { type: 'err', address: replyAddress, failureCode: -1, failureType: 'NO_HANDLERS', message };
      connection.deliver(JSON.stringify(noHandlers));
    }
  }

  /** A reply goes to the one who asked, once; the address belongs to no session. */
  #reply({ type, address, body, headers }) {
    const asker = type === 'send' || type === 'publish' ? this.#replies.get(address) : undefined;
    if (!asker) return false;
    this.#replies.delete(address);
    asker.deliver(received(address, { body, headers }));
    return true;
  }

  #ended(connection) {
    this.#connections.delete(connection);
    for (const address of [...connection.addresses]) {
      const session = this.#sessions.owning(address);
      session?.connections.delete(connection);
      session?.presenters.delete(connection);
      this.#addresses.remove(address, connection);
    }
    this.#presence.ended(connection);
  }

  #endSession(session) {
    for (const connection of [...session.connections]) connection.close(CLOSE_SESSION_ENDED, 'session ended');
    session.connections.clear();
  }
}
