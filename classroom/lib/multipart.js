import { Refusal } from './envelope.js';

const BAD = () => new Refusal(400, 'resource.error.malformedBody');

function boundaryOf(contentType = '') {
  const match = /^multipart\/form-data\s*;(?:.*;)?\s*boundary=(?:"([^"]+)"|([^\s;]+))/i.exec(contentType);
  if (!match) throw BAD();
  return match[1] ?? match[2];
}

// The names are sent unquoted, and a file name may hold double quotes of its own: it ends at the last one.
function parseHeaders(text) {
  const disposition = /^content-disposition: *form-data;(.*)$/im.exec(text);
  if (!disposition) throw BAD();
  const name = /[; ]name="?([^";]+)"?/i.exec(` ${disposition[1]}`);
  const filename = /; *filename="(.*)"/i.exec(disposition[1]);
  if (!name) throw BAD();
  return { name: name[1], filename: filename?.[1] };
}

// Hosts send an extra empty line after a delimiter: it begins the text of the headers, where it does no harm.
function parsePart(body, from, to) {
  const end = body.indexOf('\r\n\r\n', from);
  if (end < 0 || end + 4 > to) throw BAD();
  const headers = parseHeaders(body.toString('utf8', from, end));
  return { ...headers, content: body.subarray(end + 4, to) };
}

/** The parts of a multipart body, [{name, filename, content}]; refused when it is not well formed. */
export function parseMultipart(contentType, body) {
  const opening = Buffer.from(`--${boundaryOf(contentType)}`);
  const delimiter = Buffer.from(`\r\n${opening}`);
  if (!body.subarray(0, opening.length).equals(opening)) throw BAD();
  const parts = [];
  let at = opening.length;
  for (;;) {
    const after = body.toString('latin1', at, at + 2);
    if (after === '--') return parts;
    if (after !== '\r\n') throw BAD();
    const next = body.indexOf(delimiter, at + 2);
    if (next < 0) throw BAD();
    parts.push(parsePart(body, at + 2, next));
    at = next + delimiter.length;
  }
}
