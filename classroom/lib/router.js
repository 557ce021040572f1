// Finds the handler for a request, reads the body that it wants, and answers or refuses.

import { Refusal, failure } from './envelope.js';
import { parseObject, readBody, sendJson } from './http.js';
import { MAX_JSON_BODY, MAX_UPLOAD_BODY } from './limits.js';

const BODY_READERS = {
  json: async (request) => parseObject(await readBody(request, MAX_JSON_BODY)),
  none: async (request) => void await readBody(request, MAX_JSON_BODY),
  upload: (request) => readBody(request, MAX_UPLOAD_BODY),
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
      // The login is looked up first: an upload by a stranger is refused, not parsed.
      user: this.#classroom.logins.userOf(request),
      setCookie: (cookie) => cookies.push(cookie),
    };
    context.body = await this.#readBody(route, request, context.user);
    const envelope = await route.handle(context);
    if (envelope) this.#send(response, 200, envelope, cookies.length ? { 'set-cookie': cookies } : {});
  }

  // The body of a refused request is read all the same, so that the connection stays usable.
  async #readBody(route, request, user) {
    if (!route.login || user !== undefined) return BODY_READERS[route.body](request);
    await readBody(request, MAX_UPLOAD_BODY);
    throw new Refusal(403, 'login.error.required');
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
