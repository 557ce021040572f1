// The browser pages and what they load: the files of public/, and three libraries from node_modules.

import { createHash } from 'node:crypto';
import { readFile } from 'node:fs/promises';
import { readdirSync } from 'node:fs';
import { createRequire } from 'node:module';
import { extname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const PUBLIC = fileURLToPath(new URL('../public/', import.meta.url));
const { resolve } = createRequire(import.meta.url);

const TYPES = {
  '.css': 'text/css; charset=UTF-8',
  '.html': 'text/html; charset=UTF-8',
  '.js': 'text/javascript; charset=UTF-8',
  '.svg': 'image/svg+xml',
};

// Nothing from elsewhere, nothing inline: what somebody types can never become a script, a style or a request.
const HEADERS = {
  'content-security-policy': [
    "default-src 'none'", "script-src 'self'", "worker-src 'self'", "style-src 'self'", "img-src 'self' data:",
    "connect-src 'self'", "base-uri 'none'", "form-action 'none'", "frame-ancestors 'none'",
  ].join('; '),
  'referrer-policy': 'no-referrer',
  'x-content-type-options': 'nosniff',
  // Asked for again each time, and answered with 304: a class never works with yesterday's page.
  'cache-control': 'no-cache',
};

function* filesBelow(folder, path = '/') {
  for (const entry of readdirSync(folder, { withFileTypes: true })) {
    const below = join(folder, entry.name);
    if (entry.isDirectory()) yield* filesBelow(below, `${path}${entry.name}/`);
    else if (extname(entry.name) in TYPES) yield [`${path}${entry.name}`, below];
  }
}

// A table of what there is, so that no path can lead anywhere else.
const FILES = new Map([
  ...filesBelow(PUBLIC),
  ['/', join(PUBLIC, 'index.html')],
  ['/controller', join(PUBLIC, 'controller.html')],
  ['/vendor/lzma.js', resolve('lzma/src/lzma_worker-min.js')],
  ['/vendor/sockjs.js', resolve('sockjs-client/dist/sockjs.min.js')],
  ['/vendor/eventbus.js', resolve('vertx3-eventbus-client')],
]);

async function send(request, response, file) {
  const content = await readFile(file);
  const etag = `"${createHash('sha256').update(content).digest('base64url')}"`;
  const headers = { ...HEADERS, etag, 'content-type': TYPES[extname(file)] };
  if (request.headers['if-none-match'] === etag) {
    response.writeHead(304, headers).end();
    return;
  }
  response.writeHead(200, { ...headers, 'content-length': content.length });
  response.end(request.method === 'HEAD' ? undefined : content);
}

/** True when the path is one of a page, and the request has been taken. */
export function servePage(request, response, path) {
  const file = FILES.get(path);
  if (!file || !['GET', 'HEAD'].includes(request.method)) return false;
  request.resume();
  send(request, response, file).catch((error) => response.destroy(error));
  return true;
}
