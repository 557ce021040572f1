import http from 'node:http';
import https from 'node:https';
import { gunzipSync } from 'node:zlib';
import { REQUEST_MS } from './limits.js';

const CLIENTS = {
  'http:': { module: http, agent: new http.Agent({ keepAlive: true }) },
  'https:': { module: https, agent: new https.Agent({ keepAlive: true }) },
};

function parseReply(response, chunks) {
  const bytes = Buffer.concat(chunks);
  const text = response.headers['content-encoding'] === 'gzip' ? gunzipSync(bytes) : bytes;
  return { status: response.statusCode, headers: response.headers, value: JSON.parse(text.toString('utf8')) };
}

/** One request with a JSON reply: {status, headers, value}. Rejects when there is no such reply. */
export function requestJson(method, url, { body, headers = {}, signal } = {}) {
  const target = new URL(url);
  const { module, agent } = CLIENTS[target.protocol];
  return new Promise((resolve, reject) => {
    const request = module.request(target, { method, agent, headers, signal, timeout: REQUEST_MS }, (response) => {
      const chunks = [];
      response.on('data', (chunk) => chunks.push(chunk));
      response.on('error', reject);
      response.on('end', () => {
        try {
          resolve(parseReply(response, chunks));
        } catch (error) {
          reject(new Error(`${method} ${target.pathname}: ${error.message}`));
        }
      });
    });
    request.on('timeout', () => request.destroy(new Error(`${method} ${target.pathname}: no answer`)));
    request.on('error', reject);
    request.end(body);
  });
}

/** Posts a value to the service; the "data" of the reply, or an error with the service's key. */
export async function post(base, path, value, { headers, signal } = {}) {
  const reply = await requestJson('POST', `${base}${path}`, {
    body: JSON.stringify(value),
    headers: { 'content-type': 'application/json; charset=UTF-8', ...headers },
    signal,
  });
  if (reply.status !== 200) throw new Error(reply.value.errorMsgKeys?.[0] ?? `status ${reply.status}`);
  return reply.value.data;
}
