// A tap between a host and the local classroom: everything passes, and is written down.
import { once } from 'node:events';
import http from 'node:http';
import { createRequire } from 'node:module';

const require = createRequire(new URL('../../../classroom/package.json', import.meta.url));
// What the classroom's SockJS server speaks WebSocket with.
const WebSocket = createRequire(require.resolve('sockjs'))('faye-websocket');

async function bodyOf(message) {
  const chunks = [];
  for await (const chunk of message) chunks.push(chunk);
  return Buffer.concat(chunks);
}

const headerLines = (raw) => raw.flatMap((name, i) => (i % 2 === 0 ? [`${name}: ${raw[i + 1]}`] : []));

export class Tap {
  /** In order: {way: 'out' | 'in', text} of a WebSocket, {request, answer} of HTTP: {line, headers, body}. */
  records = [];
  #waiting = new Set();
  #target;
  #server = http.createServer((request, response) => this.#forward(request, response));

  constructor(target) {
    this.#target = new URL(target);
    this.#server.on('upgrade', (request, socket, head) => this.#upgrade(request, socket, head));
  }

  async start() {
    await once(this.#server.listen(0, '127.0.0.1'), 'listening');
    this.url = `http://127.0.0.1:${this.#server.address().port}`;
  }

  /** Resolves when a record fits; also when it has passed already. */
  passes(fits) {
    return new Promise((resolve) => {
      const look = () => {
        if (!this.records.some(fits)) return;
        this.#waiting.delete(look);
        resolve();
      };
      this.#waiting.add(look);
      look();
    });
  }

  stop() {
    this.#server.close();
    this.#server.closeAllConnections();
  }

  #record(entry) {
    this.records.push(entry);
    for (const look of this.#waiting) look();
  }

  async #forward(request, response) {
    const { method, url, rawHeaders } = request;
    const body = await bodyOf(request);
    const { hostname, port } = this.#target;
    const onward = http.request({ hostname, port, method, path: url, headers: request.headers });
    onward.on('error', () => response.destroy());
    // A host that has gone must not leave its poll behind.
    response.on('close', () => onward.destroy());
    onward.end(body);
    const [answer] = await once(onward, 'response').catch(() => []);
    if (!answer) return;
    const answerBody = await bodyOf(answer).catch(() => undefined);
    if (!answerBody) return;
    this.#record({
      request: { line: `${method} ${url} HTTP/1.1`, headers: headerLines(rawHeaders), body: body.toString() },
      answer: {
        line: `HTTP/1.1 ${answer.statusCode} ${answer.statusMessage}`,
        headers: headerLines(answer.rawHeaders),
        body: answerBody.toString(),
      },
    });
    response.writeHead(answer.statusCode, answer.rawHeaders);
    response.end(answerBody);
  }

  #upgrade(request, socket, head) {
    const near = new WebSocket(request, socket, head);
    const far = new WebSocket.Client(`ws://${this.#target.host}${request.url}`);
    near.on('message', ({ data }) => {
      this.#record({ way: 'out', text: data });
      far.send(data);
    });
    far.on('message', ({ data }) => {
      this.#record({ way: 'in', text: data });
      near.send(data);
    });
    near.on('close', () => far.close());
    far.on('close', () => near.close());
  }
}
