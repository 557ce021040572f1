'use strict';

// npm `sockjs`. A client that sends a text with "answers:N" in it gets N answers, as fast as it takes them.

const http = require('http');
const path = require('path');
const sockjs = require(path.join(__dirname, '../../classroom/node_modules/sockjs'));
const { messages } = require('./answers.cjs');

const answers = messages();
const bus = sockjs.createServer({ prefix: '/eventbus', log: () => {} });

bus.on('connection', (connection) => {
  connection.on('data', (text) => {
    const asked = /answers:(\d+)/.exec(text);
    for (let i = 0; asked && i < Number(asked[1]); i += 1) connection.write(answers[i % answers.length]);
  });
});

const server = http.createServer();
bus.installHandlers(server);
server.listen(0, '127.0.0.1', () => console.log(`listening ${server.address().port}`));
process.stdin.on('end', () => process.exit()).resume(); // ends with whoever started it
