'use strict';

// A SockJS server that does what is published to it: the type of the published body says what.
//
//   numbers   sends the numbered texts, a few at a time: --count of those that are in the file --texts
//   answers   sends a hundred poll answers, numbered on from those before
//   leave     closes the session
//   cut       ends every TCP connection
//
// A text that begins with a digit comes back as it is. What happens is told on stdout:
// "open ID TRANSPORT", "frame TEXT", "close ID", "request PATH COOKIES", "answered PATH", "upgrade ID".

const fs = require('fs');
const http = require('http');
const path = require('path');
const { parseArgs } = require('util');
const sockjs = require(path.join(__dirname, '../../../classroom/node_modules/sockjs'));
const upgrades = require('./upgrades');

const SHOWN = 300;
const ANSWERS = 100;

const { values: options } = parseArgs({
  options: {
    port: { type: 'string' },
    count: { type: 'string', default: '10000' },
    texts: { type: 'string' },
    'response-limit': { type: 'string', default: '131072' },
    heartbeat: { type: 'string', default: '25000' },
    upgrade: { type: 'string' },
    answer: { type: 'string' },
  },
});

const texts = JSON.parse(fs.readFileSync(options.texts)).slice(0, Number(options.count));
const say = (line) => console.log(line.slice(0, SHOWN));
const idOf = (url) => url.split('/')[3];

const sockets = new Set();
const server = http.createServer({ keepAliveTimeout: 65000 });
const bus = sockjs.createServer({
  prefix: '/eventbus',
  log: () => {},
  response_limit: Number(options['response-limit']),
  heartbeat_delay: Number(options.heartbeat),
});

function sendNumbers(connection, from = 0) {
  const next = from + 1 + (from % 37);
  for (const text of texts.slice(from, next)) connection.write(text);
  if (next < texts.length) setTimeout(sendNumbers, 1, connection, next);
}

// As devices send them and the bus passes them on, with the payload that --answer names.
let answers = 0;

function sendAnswers(connection) {
  for (let i = 0; i < ANSWERS; i += 1) {
    answers += 1;
    const body = { from: `device-${answers}`, type: 'pollResponse', data: [options.answer] };
    connection.write(JSON.stringify({ type: 'rec', address: 'session', body }));
  }
}

const actions = {
  numbers: sendNumbers,
  answers: sendAnswers,
  leave: (connection) => connection.close(3000, 'over'),
  cut: () => sockets.forEach((socket) => socket.destroy()),
};

function take(connection, text) {
  if (/^\d/.test(text)) return connection.write(text);
  say(`frame ${text}`);
  const { body } = JSON.parse(text);
  return body && actions[body.type]?.(connection);
}

bus.on('connection', (connection) => {
  if (!connection) return;
  const id = idOf(connection.url);
  say(`open ${id} ${connection.protocol}`);
  connection.on('data', (text) => take(connection, text));
  connection.on('close', () => say(`close ${id}`));
});

const handle = bus.middleware();
server.on('connection', (socket) => {
  sockets.add(socket);
  socket.on('error', () => {});
  socket.on('close', () => sockets.delete(socket));
});
server.on('request', (request, response) => {
  say(`request ${request.url} ${request.headers.cookie ?? ''}`);
  response.on('close', () => say(`answered ${request.url}`));
  handle(request, response);
});
server.on('upgrade', (request, socket, head) => {
  say(`upgrade ${idOf(request.url)}`);
  if (options.upgrade) upgrades[options.upgrade](request, socket);
  else handle(request, socket, head);
});
server.listen(Number(options.port), '127.0.0.1', () => {
  console.log(`listening http://127.0.0.1:${server.address().port}`);
});
