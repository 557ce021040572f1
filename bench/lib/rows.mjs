// The rows of the comparison: what each measures, against what, and what is wanted: the largest ratio (ours : peer), at every
// size unless one is named, or a longest time. Values are CPU time in nanoseconds unless a row says otherwise.

export const rows = [
  {
    name: 'inbound', program: 'bench_memory', unit: 'answers', goal: { most: 1.15 },
    what: 'SockJS text of an answer to the typed signal',
    peer: 'the message handed over without its frame: two Qt JSON parses, one LZMA decode, four values read',
  },
  {
    name: 'inbound-frame', program: 'bench_memory', unit: 'answers',
    what: 'the same',
    peer: 'the same, taking the message out of its frame as well: three Qt JSON parses',
  },
  {
    name: 'compress64', program: 'bench_memory', unit: 'bytes', goal: { most: 1.03, at: { 64: 0.5 } },
    what: '`Lzma::compress64`',
    peer: "the LZMA SDK's one-call encoder and Qt's base64",
  },
  {
    name: 'decompress64', program: 'bench_memory', unit: 'bytes', goal: { most: 1.03, at: { 64: 0.6 } },
    what: '`Lzma::decompress64`',
    peer: "the LZMA SDK's one-call decoder and Qt's base64",
  },
  {
    name: 'startPoll', program: 'bench_memory', unit: 'options', goal: { most: 1.2 },
    what: '`startPoll` to the bytes on a WebSocket',
    peer: 'the same JSON by hand with `QJsonDocument`, `compress64`, and a bare `QWebSocket`',
  },
  {
    name: 'startPoll-unsent', program: 'bench_memory', unit: 'options',
    what: 'the same',
    peer: 'the same, but nothing is sent',
  },
  {
    name: 'learners', program: 'bench_memory', unit: 'learners', goal: { milliseconds: 15, size: 5000 },
    what: "the learners' list of a reply",
    peer: 'one Qt JSON parse and four values of each entry read',
  },
  ...['websocket', 'xhr-streaming', 'xhr-polling'].flatMap((transport) => [
    {
      name: transport, program: 'bench_client', transport, kind: 'burst', unit: 'answers', measure: 'wall clock',
      goal: transport === 'websocket' ? { most: 1 / 6 } : { most: 1 / 4 },
      what: `answers from npm \`sockjs\` over ${transport}, to the typed signal`,
      peer: 'npm `sockjs-client` and `lzma` on Node, the same server',
    },
    { name: `${transport}-cpu`, unit: 'answers', what: "the same, the client's CPU time", peer: 'the same' },
    {
      name: `${transport}-latency`, program: 'bench_client', transport, kind: 'singles', unit: 'answer',
      measure: 'wall clock', goal: transport === 'websocket' ? undefined : { most: 1.5 },
      what: 'one answer, from the server sending it to the typed signal', peer: 'the same',
    },
  ]),
  {
    name: 'generator', program: 'bench_sockets', unit: 'answers', goal: { most: 1.25 },
    what: 'answers over a WebSocket from a generator that sends as fast as it can', peer: 'the same answers in memory',
    bare: 'a bare `QWebSocket` that does nothing with them',
  },
  {
    name: 'lesson', program: 'bench_lesson', unit: 'answers', goal: { most: 1.5 },
    what: 'the same answers through a `Calyx::Lesson` to the models, all threads', peer: 'to the typed signal, all threads',
  },
  {
    name: 'lesson-turn', program: 'bench_lesson', unit: 'learners', goal: { milliseconds: 5, size: 1000 },
    what: "the longest turn of the host's event loop while they all answer a `Calyx::Lesson` at once",
  },
  {
    name: 'open', program: 'bench_sockets', unit: 'session', measure: 'wall clock', goal: { most: 1.1 },
    what: '`open` to `connected`', peer: 'a bare `QWebSocket` opened and its first frame read',
  },
  {
    name: 'silent-server', program: 'bench_sockets', unit: 'wait', goal: { milliseconds: 20, size: 1 },
    what: 'waiting 2 s for a server that never answers',
  },
  {
    name: 'rest', program: 'bench_sockets', unit: 'request', measure: 'wall clock', goal: { most: 1.1 },
    what: 'a REST operation', peer: 'a bare `QNetworkAccessManager` post',
  },
  {
    name: 'post', program: 'bench_sockets', unit: 'posts', measure: 'wall clock', goal: { most: 2 },
    what: 'posts of 200 bytes over XHR, one after the other, as the server sees them', peer: '`curl` on a kept connection',
  },
  {
    name: 'card-memory', program: 'bench_card', unit: 'bytes', measure: 'bytes', goal: { most: 1 },
    what: '`showImageCard`: peak memory', peer: 'four times the frame, and the picture',
    bare: 'a bare `QWebSocket` that sends the frame: its text, and what the socket makes of it',
  },
];
