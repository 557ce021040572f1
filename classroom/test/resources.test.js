import assert from 'node:assert/strict';
import { randomBytes } from 'node:crypto';
import { MAX_UPLOAD_BODY } from '../lib/limits.js';
import { parseMultipart } from '../lib/multipart.js';
import { check } from './support/check.js';
import { Host, assertRefused, startClassroom } from './support/classroom.js';

const UPLOAD = '/tavisto/resource/uploadResourceFile';
const TYPE = 'multipart/form-data; charset=UTF-8; boundary=----boundary';

// Byte for byte what a host sends: an extra empty line follows every delimiter after the file.
function hostBody(fileName, content, { isTemporary = 'true', clientProvidedGUID = 'false' } = {}) {
  const value = (name, text, last) => `Content-Disposition: form-data; name=${name}\r\n`
    + `Content-Type: text/plain; charset=utf-8\r\n\r\n${text}\r\n------boundary${last ? '--' : ''}\r\n\r\n`;
  return Buffer.concat([
    Buffer.from(`------boundary\r\nContent-Disposition: form-data; name=files; filename="${fileName}"\r\n\r\n`),
    content,
    Buffer.from('\r\n------boundary\r\n\r\n'),
    Buffer.from(value('isTemporary', isTemporary, false) + value('clientProvidedGUID', clientProvidedGUID, true)),
  ]);
}

async function loggedIn(t, options) {
  const { url } = await startClassroom(t, options);
  const host = new Host(url);
  await host.logIn();
  return { host, url, upload: (body, type = TYPE) => host.send('POST', UPLOAD, body, { 'content-type': type }) };
}

const CONTENTS = {
  'three bytes': Buffer.from('ABC'),
  'no byte': Buffer.alloc(0),
  'every byte': Buffer.from(Array.from({ length: 256 }, (_, i) => i)),
  'line ends only': Buffer.from('\r\n\r\n\r\n'),
  'something like a delimiter': Buffer.from('\r\n------boundar\r\n--boundary--\r\n------Boundary'),
  'headers of its own': Buffer.from('Content-Disposition: form-data; name=files\r\n\r\n'),
  'a mebibyte': randomBytes(1024 * 1024),
};

for (const [kind, content] of Object.entries(CONTENTS)) {
  check(`a file of ${kind} comes back as it was`, async (t) => {
    const { url, upload } = await loggedIn(t);
    const reply = await upload(hostBody('f.png', content));
    assert.equal(reply.status, 200, JSON.stringify(reply.value));
    const { id, path } = reply.value.data;
    assert.equal(path, `/tavisto/resource/downloadResourceFile?resourceId=${id}`);
    const download = await fetch(url + path);
    assert.equal(download.status, 200);
    assert.equal(download.headers.get('content-type'), 'image/png');
    assert.deepEqual(Buffer.from(await download.arrayBuffer()), content);
  });
}

check('the body for f.png and ABC is parsed into its three parts', () => {
  assert.deepEqual(parseMultipart(TYPE, hostBody('f.png', Buffer.from('ABC'))), [
    { name: 'files', filename: 'f.png', content: Buffer.from('ABC') },
    { name: 'isTemporary', filename: undefined, content: Buffer.from('true') },
    { name: 'clientProvidedGUID', filename: undefined, content: Buffer.from('false') },
  ]);
});

check('a file name keeps its double quotes and letters beyond ASCII', () => {
  const [{ filename }] = parseMultipart(TYPE, hostBody('my "best" Öl 🌱.png', Buffer.from('x')));
  assert.equal(filename, 'my "best" Öl 🌱.png');
});

check('a body as a browser sends it is understood too', () => {
  const body = Buffer.from('--b\r\nContent-Disposition: form-data; name="files"; filename="f.gif"\r\n'
    + 'Content-Type: image/gif\r\n\r\nGIF\r\n--b\r\nContent-Disposition: form-data; name="isTemporary"\r\n\r\ntrue\r\n--b--\r\n');
  assert.deepEqual(parseMultipart('multipart/form-data; boundary="b"', body), [
    { name: 'files', filename: 'f.gif', content: Buffer.from('GIF') },
    { name: 'isTemporary', filename: undefined, content: Buffer.from('true') },
  ]);
});

check('a body that is cut at any byte, or of another type, is refused', () => {
  const body = hostBody('f.png', Buffer.from('ABC'));
  const refused = { status: 400, key: 'resource.error.malformedBody' };
  // The line ends behind the closing delimiter are the only bytes that nothing depends on.
  for (let length = 0; length < body.length - 4; length += 1) {
    assert.throws(() => parseMultipart(TYPE, body.subarray(0, length)), refused, `${length} bytes`);
  }
  for (const type of [undefined, '', 'application/json', 'multipart/form-data', 'multipart/form-data; boundary=other']) {
    assert.throws(() => parseMultipart(type, body), refused, String(type));
  }
});

check('an upload that does not say what it has to is refused', async (t) => {
  const { upload } = await loggedIn(t);
  const file = Buffer.from('x');
  assertRefused(await upload('nonsense'), 400, 'resource.error.malformedBody');
  assertRefused(await upload(hostBody('', file)), 400, 'resource.error.files');
  assertRefused(await upload(hostBody('f', file, { isTemporary: 'maybe' })), 400, 'resource.error.isTemporary');
  const guid = hostBody('f', file, { clientProvidedGUID: 'true' });
  assertRefused(await upload(guid), 400, 'resource.error.clientProvidedGUID');
});

check('an upload needs a login, a download only the id', async (t) => {
  const { url } = await startClassroom(t);
  const stranger = new Host(url);
  const reply = await stranger.send('POST', UPLOAD, hostBody('f', Buffer.from('x')), { 'content-type': TYPE });
  assertRefused(reply, 403, 'login.error.required');
  for (const query of ['?resourceId=unknown', '?resourceId=', '']) {
    const download = await stranger.send('GET', `/tavisto/resource/downloadResourceFile${query}`);
    assertRefused(download, 404, 'resource.error.unknown');
  }
});

check('an upload of exactly the limit is stored, one byte more is refused', async (t) => {
  const { url, upload } = await loggedIn(t);
  const room = MAX_UPLOAD_BODY - hostBody('f', Buffer.alloc(0)).length;
  const { status, value } = await upload(hostBody('f', Buffer.alloc(room, 7)));
  assert.equal(status, 200);
  const download = await fetch(url + value.data.path);
  assert.equal((await download.arrayBuffer()).byteLength, room);
  assertRefused(await upload(hostBody('f', Buffer.alloc(room + 1))), 413, 'request.error.tooLarge');
});
