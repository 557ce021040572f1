'use strict';

// npm `sockjs-client` and `lzma`: client.cjs PORT TRANSPORT burst|singles COUNT asks for answers and prints, in nanoseconds,
// how long the burst took, or the latency of each single answer, and the CPU time of all.

const path = require('path');
const SockJS = require(path.join(__dirname, '../../classroom/node_modules/sockjs-client'));
const { read } = require('./answers.cjs');

const [port, transport, kind, count] = process.argv.slice(2);
const socket = new SockJS(`http://127.0.0.1:${port}/eventbus`, null, { transports: [transport] });
const durations = [];
let left = Number(count);
let begun;
let cpuBegun;

function finish() {
  if (kind === 'burst') durations.push(Number(process.hrtime.bigint() - begun));
  const { user, system } = process.cpuUsage(cpuBegun);
  console.log(JSON.stringify({ durations, cpu: (user + system) * 1000 }));
  process.exit();
}

socket.onopen = () => {
  cpuBegun = process.cpuUsage();
  begun = process.hrtime.bigint();
  socket.send(`${kind}:${count}`);
};
socket.onmessage = ({ data }) => {
  const [deviceId] = read(data);
  if (!deviceId.startsWith('device-')) throw new Error(`not an answer: ${data}`);
  const now = performance.timeOrigin + performance.now();
  if (kind === 'singles') durations.push(Math.round(now * 1e6 - Number(deviceId.slice('device-'.length)) * 1e3));
  left -= 1;
  if (left === 0) finish();
};
