'use strict';

// npm `sockjs`. What a client sends says what it gets: "burst:N" N answers, as fast as it takes them; "singles:N" N answers
// with pauses between them, each from a device that is named after the time of sending in microseconds.

const http = require('http');
const path = require('path');
const sockjs = require(path.join(__dirname, '../../classroom/node_modules/sockjs'));
const { messages } = require('./answers.cjs');

const answers = messages();
const bus = sockjs.createServer({ prefix: '/eventbus', log: () => {} });

const PAUSE = 20; // ms

function sendBurst(connection, count) {
  for (let i = 0; i < count; i += 1) connection.write(answers[i % answers.length]);
}

function sendSingles(connection, count) {
  const now = Math.round((performance.timeOrigin + performance.now()) * 1000);
  connection.write(answers[0].replace('device-0', `device-${now}`));
  if (count > 1) setTimeout(sendSingles, PAUSE, connection, count - 1);
}

bus.on('connection', (connection) => {
  connection.on('data', (text) => {
    const [, kind, count] = /(burst|singles):(\d+)/.exec(text) ?? [];
    if (kind === 'burst') sendBurst(connection, Number(count));
    else if (kind === 'singles') setTimeout(sendSingles, PAUSE, connection, Number(count));
  });
});

const server = http.createServer();
bus.installHandlers(server);
server.listen(0, '127.0.0.1', () => console.log(`listening ${server.address().port}`));
process.stdin.on('end', () => process.exit()).resume(); // ends with whoever started it
