import sockjs from 'sockjs';
import { Addresses } from './addresses.js';
import { BoundedMap } from './bounded.js';
import { Budget } from './budget.js';
import { Callers } from './callers.js';
import {
  CLOSE_SESSION_ENDED, CLOSE_SHUTDOWN, CLOSE_TOO_MANY, CLOSE_TOO_MUCH, Connection,
} from './connection.js';
import {
  MAX_ADDRESSES_PER_CONNECTION, MAX_ADDRESS_LENGTH, MAX_CONNECTIONS, MAX_FRAME, MAX_HELD_FRAMES, MAX_PENDING_REPLIES,
  MAX_STRANGER_FRAME,
} from './limits.js';
import { mayRegister, maySend } from './permissions.js';
import { Presence } from './presence.js';

const PREFIX = '/eventbus';
// What belongs to no session. The transports that are for pages of other sites are not served: there are none.
const OPEN_PATHS = [PREFIX, `${PREFIX}/`, `${PREFIX}/info`];
// What may stand around a frame, in bytes, without making it too long: the escapes of an XHR body double its quotes.
const FRAMING = 64 * 1024;

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

const pathOf = ({ url }) => url.split('?')[0];

// The connection of a WebSocket, which the SockJS server keeps to itself.
const wireOf = (socket) => socket._session?.recv?.connection;

const isAddress = (value) => typeof value === 'string' && value !== '';

function received(address, { body = null, headers, replyAddress }) {
  const sent = headers && Object.keys(headers).length > 0 ? headers : undefined;
  return JSON.stringify({ type: 'rec', address, body, headers: sent, replyAddress });
}

/** The event bus: SockJS connections that register, unregister, publish, send and ping. */
export class Bus {
  #sessions;
  #front;
  #sockjsHandler;
  #maxQueued;
  #connections = new Set();
  #addresses = new Addresses();
  #replies = new BoundedMap(MAX_PENDING_REPLIES);
  #callers = new Callers();
  #held = new Budget(MAX_HELD_FRAMES);
  // By WebSocket: {add, reset}, what has come in of a frame that is not complete.
  #meters = new WeakMap();
  #presence = new Presence((session, body) => this.#publish(presenterAddress(session), { body }));
  #handlers = {
    register: (connection, frame, session) => this.#register(connection, frame, session),
    unregister: (connection, frame, session) => this.#unregister(connection, frame, session),
    publish: (connection, frame) => this.#publish(frame.address, frame),
    send: (connection, frame) => this.#send(connection, frame),
  };

  constructor(sessions, front, { websocket, awayMs, maxQueued }) {
    this.#sessions = sessions;
    this.#front = front;
    this.#maxQueued = maxQueued;
    sessions.on('stopped', (session) => this.#endSession(session));
    const server = sockjs.createServer({
      prefix: PREFIX,
      websocket,
      log: () => {},
      disable_cors: true,
      disconnect_delay: awayMs,
      faye_server_options: { maxLength: MAX_FRAME },
    });
    server.on('connection', (socket) => this.#connected(socket));
    this.#sockjsHandler = server.middleware();
  }

  /** True when the path is one of the bus, and the request has been taken. */
  handle(request, response, path) {
    if (path !== PREFIX && !path.startsWith(`${PREFIX}/`)) return false;
    const isOpen = OPEN_PATHS.includes(path);
    const status = isOpen ? undefined : this.#callers.refusal(request, response, path);
    if (status) {
      request.resume();
      response.writeHead(status, { 'content-length': 0 }).end();
      return true;
    }
    const meter = this.#meter(() => this.#callers.at(path), () => request.destroy());
    request.on('data', meter.add);
    request.on('close', meter.reset);
    this.#sockjsHandler(request, response);
    return true;
  }

  /** Counts what is held of a frame until it is complete; whoever holds too much is cut off. */
  #meter(connectionNow, cut) {
    const lease = this.#held.lease();
    let size = 0;
    return {
      add: ({ length }) => {
        size += length;
        const connection = connectionNow();
        const limit = connection?.frameLimit ?? MAX_STRANGER_FRAME;
        if (size > limit + FRAMING || !(connection?.isPresenter || lease.take(length))) cut();
      },
      reset: () => {
        size = 0;
        lease.end();
      },
    };
  }

  /** Takes an upgrade to a WebSocket; any other upgrade is turned away. */
  upgrade(request, socket, head) {
    const path = pathOf(request);
    const wanted = request.method === 'GET' && /^\/eventbus\/[^/.]+\/[^/.]+\/websocket\/?$/.test(path);
    if (!wanted) {
      socket.end('HTTP/1.1 400 Bad Request\r\nConnection: close\r\nContent-Length: 0\r\n\r\n');
      return;
    }
    const meter = this.#meter(() => meter.connection, () => socket.destroy());
    meter.presenter = request.presenter;
    this.#meters.set(socket, meter);
    // Before the SockJS server hears it: what ends a frame is counted, and then the frame is complete.
    socket.on('data', meter.add);
    socket.on('close', meter.reset);
    this.#sockjsHandler(request, socket, head);
  }

  close() {
    for (const connection of this.#connections) connection.close(CLOSE_SHUTDOWN, 'classroom closed');
  }

  #connected(socket) {
    // The SockJS server gives null for a connection that was gone before it was announced.
    if (!socket) return;
    const connection = new Connection(socket, this.#maxQueued);
    if (this.#connections.size >= MAX_CONNECTIONS) {
      connection.close(CLOSE_TOO_MANY, 'too many connections');
      return;
    }
    this.#connections.add(connection);
    const path = pathOf(socket);
    this.#callers.connected(path, connection);
    const meter = Object.assign(this.#meters.get(wireOf(socket)) ?? {}, { connection });
    connection.presenter ??= meter.presenter;
    socket.on('data', (text) => {
      meter.reset?.();
      this.#received(connection, text);
    });
    socket.on('close', () => {
      this.#callers.ended(path, connection);
      this.#ended(connection);
    });
  }

  #received(connection, text) {
    const length = text?.length ?? 0;
    if (!connection.maySend(length)) return connection.close(CLOSE_TOO_MUCH, 'too much');
    const frame = parseFrame(text);
    if (!frame) return connection.fail('invalid_json');
    if (typeof frame.type !== 'string') return connection.fail('missing_type');
    if (frame.type === 'ping') return undefined;
    if (!Object.hasOwn(this.#handlers, frame.type)) return connection.fail('unknown_type');
    if (!isAddress(frame.address)) return connection.fail('missing_address');
    if (frame.address.length > MAX_ADDRESS_LENGTH) return connection.fail('address_too_long');
    if (this.#reply(connection, frame)) return undefined;
    const session = this.#sessions.owning(frame.address);
    if (!session || !this.#allows(session, connection, frame)) return connection.fail('access_denied');
    if (this.#overwhelms(connection, frame, length)) return connection.close(CLOSE_TOO_MUCH, 'too much');
    return this.#handlers[frame.type](connection, frame, session);
  }

  /** A presenter that is behind is not cut off for what others send it: they are, beginning with those who send much. */
  #overwhelms(connection, { address }, length) {
    if (connection.isPresenter || !(connection.floods || length > MAX_STRANGER_FRAME)) return false;
    return this.#addresses.all(address).some((listener) => listener !== connection && listener.isBehind);
  }

  #allows(session, connection, frame) {
    if (frame.replyAddress !== undefined && !this.#mayBeReplyAddress(frame.replyAddress)) return false;
    if (frame.type === 'register') return mayRegister(session, connection, frame, this.#front);
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
    if (address === presenterAddress(session)) this.#sessions.removePresenter(session, connection);
    this.#presence.unregistered(address, connection);
  }

  #publish(address, { body, headers }) {
    const text = received(address, { body, headers });
    for (const listener of this.#addresses.all(address)) listener.deliver(text);
  }

  #send(connection, { address, body, headers, replyAddress }) {
    const wantsReply = replyAddress !== undefined;
    const listener = this.#addresses.next(address);
    if (listener) {
      if (wantsReply) this.#replies.set(replyAddress, { asker: connection, listener });
      listener.deliver(received(address, { body, headers, replyAddress }));
    } else if (wantsReply) {
      const message = `No handlers for address ${address}`;
      const noHandlers = { type: 'err', address: replyAddress, failureCode: -1, failureType: 'NO_HANDLERS', message };
      connection.deliver(JSON.stringify(noHandlers));
    }
  }

  /** Nobody else's, so that nothing which was meant for others comes as a reply: no session's, and not waited at already. */
  #mayBeReplyAddress(address) {
    return isAddress(address) && address.length <= MAX_ADDRESS_LENGTH && !this.#sessions.owning(address) && !this.#replies.has(address);
  }

  /** A reply goes from the one who was asked to the one who asked, once. */
  #reply(connection, { type, address, body, headers }) {
    const { asker, listener } = (type === 'send' || type === 'publish' ? this.#replies.get(address) : undefined) ?? {};
    if (!asker || listener !== connection) return false;
    this.#replies.delete(address);
    asker.deliver(received(address, { body, headers }));
    return true;
  }

  #ended(connection) {
    this.#connections.delete(connection);
    for (const address of [...connection.addresses]) {
      this.#addresses.remove(address, connection);
      const session = this.#sessions.owning(address);
      if (!session) continue;
      session.connections.delete(connection);
      this.#sessions.removePresenter(session, connection);
    }
    this.#presence.ended(connection);
  }

  #endSession(session) {
    for (const connection of [...session.connections]) connection.close(CLOSE_SESSION_ENDED, 'session ended');
    session.connections.clear();
  }
}
