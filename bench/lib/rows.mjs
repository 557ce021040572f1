// The rows of the comparison: what each measures, against what, and what is wanted. A goal is the largest ratio (ours : peer)
// at a size, at every size unless one is named. Rates have the smallest instead.

export const rows = [
  {
    name: 'inbound', unit: 'answers', goal: { most: 1.15 },
    what: 'SockJS text of an answer to the typed signal',
    peer: 'the message handed over without its frame: two Qt JSON parses, one LZMA decode, four values read',
  },
  {
    name: 'inbound-frame', unit: 'answers',
    what: 'the same',
    peer: 'the same, taking the message out of its frame as well: three Qt JSON parses',
  },
  {
    name: 'compress64', unit: 'bytes', goal: { most: 1.03, at: { 64: 0.5 } },
    what: '`Lzma::compress64`',
    peer: "the LZMA SDK's one-call encoder and Qt's base64",
  },
  {
    name: 'decompress64', unit: 'bytes', goal: { most: 1.03, at: { 64: 0.6 } },
    what: '`Lzma::decompress64`',
    peer: "the LZMA SDK's one-call decoder and Qt's base64",
  },
  {
    name: 'startPoll', unit: 'options', goal: { most: 1.2 },
    what: '`startPoll` to the bytes on a WebSocket',
    peer: 'the same JSON by hand with `QJsonDocument`, `compress64`, and a bare `QWebSocket`',
  },
  {
    name: 'startPoll-unsent', unit: 'options',
    what: 'the same',
    peer: 'the same, but nothing is sent',
  },
  {
    name: 'learners', unit: 'learners', goal: { milliseconds: 15, size: 5000 },
    what: "the learners' list of a reply",
    peer: 'one Qt JSON parse and four values of each entry read',
  },
];
