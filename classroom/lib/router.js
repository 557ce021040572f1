// Finds the handler for a request, reads the body that it wants, and answers or refuses.

import { Budget } from './budget.js';
import { Refusal, failure } from './envelope.js';
import { dropBody, parseObject, readBody, sendJson } from './http.js';
import { MAX_HELD_BODIES, MAX_HELD_STRANGERS_BODIES, MAX_JSON_BODY, MAX_UPLOAD_BODY } from './limits.js';

// A page of another site can post any text, but not as JSON.
async function readJson(request, lease) {
  const body = await readBody(request, MAX_JSON_BODY, lease);
  const [type] = (request.headers['content-type'] ?? '').split(';');
  if (type.trim().toLowerCase() !== 'application/json') throw new Refusal(415, 'request.error.contentType');
  return parseObject(body);
}

const BODY_READERS = {
  json: readJson,
  none: async (request, lease) => void await readBody(request, MAX_JSON_BODY, lease),
  upload: (request, lease) => readBody(request, MAX_UPLOAD_BODY, lease),
};

function compile({ path, method = 'POST', body = 'json', login = false, handle }) {
  const pattern = new RegExp(`^${path.replace(/:(\w+)/g, '(?<$1>[^/]+)')}$`);
  return { pattern, method, body, login, handle };
}

function decodeParams(groups = {}) {
  try {
    return Object.fromEntries(Object.entries(groups).map(([name, value]) => [name, decodeURIComponent(value)]));
  } catch {
    throw new Refusal(400, 'request.error.path');
  }
}

export class Router {
  #classroom;
  #routes;
  #bodies = new Budget(MAX_HELD_BODIES);
  #strangersBodies = new Budget(MAX_HELD_STRANGERS_BODIES);

  constructor(classroom, routes) {
    this.#classroom = classroom;
    this.#routes = routes.map(compile);
  }

  async handle(request, response, path, query) {
    try {
      await this.#answer(request, response, path, query);
    } catch (error) {
      if (!(error instanceof Refusal)) this.#classroom.log(`error: ${error.stack}`);
      this.#refuse(response, error);
    }
  }

  async #answer(request, response, path, query) {
    const { route, params } = this.#find(request, path);
    const cookies = [];
    const context = {
      request,
      response,
      query,
      params,
      classroom: this.#classroom,
      // The login is looked up first: an upload by a stranger is refused, not kept.
      login: this.#classroom.logins.of(request),
      setCookie: (cookie) => cookies.push(cookie),
    };
    context.user = context.login?.userId;
    if (route.login && !context.login) {
      await dropBody(request);
      throw new Refusal(403, 'login.error.required');
    }
    const envelope = await this.#handle(route, context);
    if (envelope) this.#send(response, 200, envelope, cookies.length ? { 'set-cookie': cookies } : {});
  }

  async #handle(route, context) {
    const lease = (context.login ? this.#bodies : this.#strangersBodies).lease();
    try {
      context.body = await BODY_READERS[route.body](context.request, lease);
      return await route.handle(context);
    } finally {
      lease.end();
    }
  }

  #find(request, path) {
    const fitting = this.#routes.filter(({ pattern }) => pattern.test(path));
    if (fitting.length === 0) throw new Refusal(404, 'request.error.unknownPath');
    const route = fitting.find(({ method }) => method === request.method);
    if (!route) throw new Refusal(405, 'request.error.method');
    return { route, params: decodeParams(route.pattern.exec(path).groups) };
  }

  #refuse(response, error) {
    if (response.headersSent || response.destroyed) return;
    const refused = error instanceof Refusal;
    this.#send(response, refused ? error.status : 500, failure(refused ? error.key : 'service.error.internal'));
  }

  #send(response, status, envelope, headers = {}) {
    sendJson(response, status, envelope, { gzip: this.#classroom.options.gzip, headers });
  }
}
