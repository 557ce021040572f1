// What every request needs: its body within bounds, and its reply in the service's form.

import { gzipSync } from 'node:zlib';
import { Refusal } from './envelope.js';
import { MAX_DRAINED_BODY } from './limits.js';

/**
 * The whole body, refused with 413 when it is longer than `limit`, and with 503 when the lease, on what is held of it, does not
 * give that much. What is refused is read to its end all the same, so that the connection stays usable.
 */
export function readBody(request, limit, lease) {
  return new Promise((resolve, reject) => {
    let chunks = [];
    let size = 0;
    let refusal = null;
    const refuse = (status, key) => {
      refusal ??= new Refusal(status, key);
      chunks = [];
      lease.end();
    };
    request.on('data', (chunk) => {
      size += chunk.length;
      if (size > limit) refuse(413, 'request.error.tooLarge');
      else if (!refusal && !lease.take(chunk.length)) refuse(503, 'request.error.busy');
      if (!refusal) chunks.push(chunk);
      if (size > MAX_DRAINED_BODY) request.destroy();
    });
    request.on('end', () => (refusal ? reject(refusal) : resolve(Buffer.concat(chunks))));
    request.on('close', () => reject(new Refusal(400, 'request.error.cut')));
  });
}

const NOTHING = { take: () => false, end: () => {} };

/** Reads a body of somebody who is refused, and holds nothing of it. */
export const dropBody = (request) => readBody(request, MAX_DRAINED_BODY, NOTHING).catch(() => {});

/** The JSON object in a body; anything else is refused. */
export function parseObject(body) {
  let value;
  try {
    value = JSON.parse(new TextDecoder('utf-8', { fatal: true }).decode(body));
  } catch {
    throw new Refusal(400, 'request.error.malformedJson');
  }
  if (value === null || typeof value !== 'object' || Array.isArray(value)) {
    throw new Refusal(400, 'request.error.notAnObject');
  }
  return value;
}

export function sendJson(response, status, value, { gzip = false, headers = {} } = {}) {
  const text = Buffer.from(JSON.stringify(value));
  const body = gzip ? gzipSync(text) : text;
  response.writeHead(status, {
    'content-type': 'application/json; charset=UTF-8',
    'cache-control': 'no-store',
    ...(gzip ? { 'content-encoding': 'gzip' } : {}),
    'content-length': body.length,
    ...headers,
  });
  response.end(body);
}

/** The address at which the client has reached this process, also through a proxy that ends TLS. */
export function ownAddress(request) {
  const scheme = request.headers['x-forwarded-proto'] === 'https' ? 'https' : 'http';
  const { address, port } = request.socket.address();
  return `${scheme}://${request.headers.host ?? `${address}:${port}`}`;
}

export function isLoopback(address = '') {
  return /^(::ffff:)?127\./.test(address) || address === '::1';
}
