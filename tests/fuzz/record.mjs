// Records what a lesson on the local classroom sends to the presenter, over each transport, and writes it as inputs for the
// fuzz targets, together with inputs made by hand after the unit tests.
//
// node record.mjs CALYX_PRESENTER SOURCE_FOLDER OUTPUT_FOLDER; then run --keep with OUTPUT_FOLDER = build/fuzz/found
import { spawn } from 'node:child_process';
import { createHash } from 'node:crypto';
import { once } from 'node:events';
import { mkdirSync, writeFileSync } from 'node:fs';
import net from 'node:net';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { gzipSync, deflateSync } from 'node:zlib';
import { handMade } from './seeds.mjs';

const LEARNERS = 2;
const POLLS = ['true-false', 'multiple alpha-upper 4 2', 'scale number 5', 'sort alpha-upper 4', 'text', 'word-seed alpha-upper 3',
  'number 2', 'creative', 'math-formula'];
const LESSON = [
  'login', 'session start', `wait learners ${LEARNERS} within 60`,
  ...POLLS.flatMap((poll) => [`poll ${poll}`, 'wait answers all within 60', 'poll stop']),
  'session stop', 'logout', '',
].join('\n');

// By the order of the operations in fuzz_Reply.cpp.
const OPERATIONS = {
  '/tavisto': 0, '/tavisto/login/submit': 1, '/tavisto/login/user': 6, '/tavisto/login/keepSessionAlive': 7,
  '/tavisto/login/logout': 8, '/tavisto/session/create': 9, '/tavisto/session/getusers': 10, '/tavisto/session/stop': 11,
  '/tavisto/session/getcollabserverurl': 12, '/tavisto/config/findTenantFeatureDetails': 13, '/tavisto/session/start': 14,
  '/tavisto/classroom/session/join': 15, '/tavisto/resource/uploadResourceFile': 16,
};
const AFTER_SESSION = 16;
const GZIP_ENCODED = 2;

const [presenter, source, output] = process.argv.slice(2);
const running = new Set();

function start(command, args) {
  const child = spawn(command, args, { stdio: ['pipe', 'pipe', 'inherit'] });
  running.add(child);
  child.once('close', () => running.delete(child));
  return child;
}

const classroomScript = (name, ...args) => start(process.execPath, [join(source, 'classroom', name), ...args]);

async function listeningPort(child) {
  for await (const line of createInterface({ input: child.stdout })) {
    const match = /^listening \S+:(\d+)$/.exec(line);
    if (match) return Number(match[1]);
  }
  throw new Error('the classroom ended before it listened');
}

/** Passes everything on to `port` and keeps it: for each connection, what was sent and what came back. */
async function startRelay(port) {
  const connections = [];
  const server = net.createServer((client) => {
    const connection = { sent: [], received: [] };
    connections.push(connection);
    const peer = net.connect(port, '127.0.0.1');
    client.on('data', (bytes) => connection.sent.push(bytes)).pipe(peer);
    peer.on('data', (bytes) => connection.received.push(bytes)).pipe(client);
    for (const socket of [client, peer]) socket.on('error', () => { client.destroy(); peer.destroy(); });
  });
  server.listen(0, '127.0.0.1');
  await once(server, 'listening');
  return { server, connections, url: `http://127.0.0.1:${server.address().port}` };
}

async function teach(transport) {
  const classroom = classroomScript('server.js', '--port', '0', '--quiet');
  const relay = await startRelay(await listeningPort(classroom));
  const learners = classroomScript('learners.js', '--url', relay.url, '--session', 'auto', '--count', String(LEARNERS), '--quiet');
  learners.stdout.resume();
  const before = relay.connections.length;
  const host = start(presenter, ['--server', relay.url, '--user', 'teacher', '--password', 'chalk', '--transports', transport,
    '--quiet']);
  host.stdout.resume();
  host.stdin.end(LESSON);
  const [code] = await once(host, 'close');
  if (code !== 0) throw new Error(`the lesson over ${transport} failed`);
  classroom.kill('SIGTERM');
  await once(classroom, 'close');
  relay.server.close();
  return relay.connections.slice(before).map(({ sent, received }) => ({
    sent: Buffer.concat(sent), received: Buffer.concat(received),
  }));
}

function save(target, bytes) {
  const folder = join(output, target);
  mkdirSync(folder, { recursive: true });
  writeFileSync(join(folder, createHash('sha1').update(bytes).digest('hex')), bytes);
}

/** The text frames in what a WebSocket server has sent after its upgrade. */
function* webSocketTexts(bytes) {
  let at = bytes.indexOf('\r\n\r\n') + 4;
  while (at + 2 <= bytes.length) {
    const isText = (bytes[at] & 0x0f) === 1;
    let size = bytes[at + 1] & 0x7f;
    at += 2;
    if (size === 126) { size = bytes.readUInt16BE(at); at += 2; } else if (size === 127) return;
    if (isText) yield bytes.toString('utf8', at, at + size);
    at += size;
  }
}

/** The bodies in a sequence of answers that have a Content-Length. */
function* bodies(bytes) {
  let at = 0;
  for (;;) {
    const end = bytes.indexOf('\r\n\r\n', at);
    if (end < 0) return;
    const length = /content-length: *(\d+)/i.exec(bytes.toString('latin1', at, end));
    at = end + 4 + (length ? Number(length[1]) : 0);
    yield bytes.subarray(end + 4, at);
  }
}

function savePayload(data) {
  const chunks = Array.isArray(data) ? data : [data];
  if (!chunks.every((chunk) => typeof chunk === 'string')) return;
  save('Payload', Buffer.from(`c${chunks.join('\n')}`));
  save('Payload', Buffer.from(`s${chunks[0]}`));
  const block = Buffer.from(chunks[0], 'base64');
  save('Payload', Buffer.concat([Buffer.from('b'), block]));
  save('Block', block);
}

function saveFrame(frame) {
  save('SockJSFrame', Buffer.from(frame));
  if (!frame.startsWith('a')) return;
  for (const message of JSON.parse(frame.slice(1))) {
    save('Message', Buffer.from(message));
    for (const target of ['Serializer', 'Json']) save(target, Buffer.from(message));
    const data = JSON.parse(message).body?.data;
    if (data !== undefined) savePayload(data);
  }
}

function saveReplies({ sent, received }) {
  const paths = [...sent.toString('latin1').matchAll(/POST (\S+) HTTP\/1\.1\r\n/g)].map((match) => match[1]);
  let i = 0;
  for (const body of bodies(received)) {
    const operation = OPERATIONS[paths[i++]];
    if (operation === undefined || body.length === 0) continue;
    save('Reply', Buffer.concat([Buffer.from([operation, AFTER_SESSION]), body]));
    save('Reply', Buffer.concat([Buffer.from([operation, AFTER_SESSION | GZIP_ENCODED]), gzipSync(body)]));
    save('Serializer', body);
    save('Gzip', gzipSync(body));
    save('Gzip', deflateSync(body));
  }
}

function saveRawAnswers({ sent, received }, streaming) {
  if (!/^POST \S+\/xhr(_streaming)? /.test(sent.toString('latin1', 0, 200))) return;
  const settings = [Buffer.from(streaming ? 's' : 'p'), Buffer.from([100, 1, 7, 0])];
  for (let at = 0; at < received.length && at < 8192; at += 1024)
    save('HttpResponse', Buffer.concat([...settings, received.subarray(at, at + 2048)]));
  for (const match of received.toString('utf8').matchAll(/^(o|h|a\[.*\]|c\[.*\])$/gm)) saveFrame(match[1]);
}

try {
  for (const transport of ['websocket', 'xhr-streaming', 'xhr-polling']) {
    for (const connection of await teach(transport)) {
      if (connection.received.subarray(0, 12).includes('101')) for (const text of webSocketTexts(connection.received)) saveFrame(text);
      saveReplies(connection);
      saveRawAnswers(connection, transport === 'xhr-streaming');
    }
  }
  for (const [target, inputs] of Object.entries(handMade)) for (const input of inputs) save(target, Buffer.from(input));
} finally {
  for (const child of running) child.kill('SIGKILL');
}
