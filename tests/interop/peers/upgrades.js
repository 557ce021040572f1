'use strict';

// What networks and servers do to a WebSocket's upgrade. Each takes the request and its socket.

const crypto = require('crypto');

const PAGE = '<html><body>Blocked by the school</body></html>';
const LATER_MS = 200;

function answer(status) {
  return (request, socket) => socket.end(
    `HTTP/1.1 ${status}\r\nContent-Type: text/html\r\nContent-Length: ${PAGE.length}\r\n\r\n${PAGE}`,
  );
}

function accept(request, socket) {
  const key = `${request.headers['sec-websocket-key']}258EAFA5-E914-47DA-95CA-C5AB0DC85B11`;
  const proof = crypto.createHash('sha1').update(key).digest('base64');
  socket.write('HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n'
    + `Sec-WebSocket-Accept: ${proof}\r\n\r\n`);
}

const accepted = (then) => (request, socket) => {
  accept(request, socket);
  then(socket);
};

module.exports = {
  403: answer('403 Forbidden'),
  200: answer('200 OK'),
  silence: () => {},
  reset: (request, socket) => socket.resetAndDestroy(),
  // Upgraded, and then no "o": the connection ends at once, ends later, is reset later, or stays.
  drop: accepted((socket) => socket.end()),
  dropLater: accepted((socket) => setTimeout(() => socket.end(), LATER_MS)),
  resetLater: accepted((socket) => setTimeout(() => socket.resetAndDestroy(), LATER_MS)),
  mute: accept,
};
