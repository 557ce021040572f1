import http from 'node:http';

/** A request from another address of this machine; resolves with {status, headers, text}. */
export function ask(url, path, { method = 'POST', body, headers = {}, from = '127.0.0.2' } = {}) {
  return new Promise((resolve, reject) => {
    const request = http.request(`${url}${path}`, { method, headers, localAddress: from, agent: false }, (response) => {
      let text = '';
      response.setEncoding('utf8').on('data', (piece) => { text += piece; })
        .on('end', () => resolve({ status: response.statusCode, headers: response.headers, text }));
    });
    request.on('error', reject).end(body);
  });
}
