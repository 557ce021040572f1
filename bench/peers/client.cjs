'use strict';

// npm `sockjs-client` and `lzma`: client.cjs PORT TRANSPORT COUNT TURNS asks for COUNT answers TURNS times, one after the
// other, and prints how long each turn took and the CPU time of all, in nanoseconds.

const path = require('path');
const SockJS = require(path.join(__dirname, '../../classroom/node_modules/sockjs-client'));
const { read } = require('./answers.cjs');

const [port, transport, count, turns] = process.argv.slice(2);
const socket = new SockJS(`http://127.0.0.1:${port}/eventbus`, null, { transports: [transport] });
const durations = [];
let left = 0;
let begun;
let cpuBegun;

function ask() {
  left = Number(count);
  begun = process.hrtime.bigint();
  socket.send(`answers:${count}`);
}

socket.onopen = () => {
  cpuBegun = process.cpuUsage();
  ask();
};
socket.onmessage = ({ data }) => {
  if (!read(data)[0].startsWith('device-')) throw new Error(`not an answer: ${data}`);
  left -= 1;
  if (left > 0) return;
  durations.push(Number(process.hrtime.bigint() - begun));
  if (durations.length < Number(turns)) {
    ask();
    return;
  }
  const { user, system } = process.cpuUsage(cpuBegun);
  console.log(JSON.stringify({ durations, cpu: (user + system) * 1000 }));
  socket.close();
  process.exit();
};
