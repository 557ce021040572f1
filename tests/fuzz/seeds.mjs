// Inputs made by hand, after the unit tests: what a lesson does not show.

import { encodeData } from '../../classroom/lib/codec.js';

const message = (body) => JSON.stringify({ type: 'publish', address: 'T', body });
const COMMANDS = ['stopSession', 'requestLessonInfo', 'requestLesson', 'presenterActive', 'pause', 'resume', 'lockAll',
  'unlockAll', 'nextCard', 'previousCard', 'pushCurrentCard', 'addImageCard', 'chat'];
const [OBJECT] = encodeData({ pollId: 'p', responseTime: 5, blob: { pick: ['A', 'B'], input: 'x' }, questionNumber: 2,
  userName: 'n', deviceType: 'x', questionId: 'q', answer: 'A', optionAnswers: [{ activityOptionId: 'B' }] });
const [LIST] = encodeData([1, {}]);
const DATA = [null, true, 5, -1.5, 'text', '', {}, [], [null], [1, 2, 3], [[]], [{}], ['text', 5], OBJECT, [OBJECT], LIST, [LIST], [OBJECT, OBJECT],
  [93, 0, 0, 0, 4, 2, 0, 0, 0, 0, 0, 0, 0, 0, 61]];
const HOSTILE = [
  '', ' ', 'null', '1', '"text"', '[]', '{}', '{', '[', '}', '{"body"', '{"body":', '{"body":null}', '{"body":[]}',
  '{"body":{"type":null}}', '{"body":{"type":["join"]}}', '{"body":{"type":{"join":1}}}', '{"body":{"type":5}}',
  '{"body":{"type":true}}', '{"body":{"action":null,"type":"join"}}', '{"body":{"action":1}}', '{"body":{"action":{}}}',
  '{"body":{"type":"join"},"body":{"type":"pause"}}', '{"body":{"type":"join","type":"pause"}}',
  '{"body":{"type":"join","from":1e400}}', '{"body":{"type":"join","from":-0}}', '{"body":{"type":"join","from":1e-400}}',
  '{"body":{"type":"join","from":123123123123123123123}}', '{"body":{"type":"\\ud800","from":"\\udc00"}}',
  '{"body":{"type":"\\u0000join","from":"\\u0000"}}', '{"body":{"type":"join",}}', '{"body":{"type":"join"}}x',
  '\ufeff{"body":{"type":"join"}}', '{"body":{"type":"join"}}\0', "{'body':{}}", '{"body":{"type":"\t"}}',
  '{"body":{"action":"unregister","client":"user"}}', '{"body":{"action":"unregister","client":["user"]}}',
  '{"body":{"action":"unregister","client":{"type":"controller","token":{}}}}', '['.repeat(1030), '{"a":'.repeat(1030),
];
const REPEATED = ['{"a":{"x":1},"a":{"y":2}}', '{"a":[1],"\\u0061":[2],"a":5}', '[{"b":{"a":{"c":{}},"a":[]},"b":"x"}]',
  '{"\\ud800":{"x":1},"\\ud801":{"y":2}}', '{"\\n":[1],"\\u000a":2}', '{"\\ud83d\\ude00":[1],"\ud83d\ude00":[2]}', '{"a":{"x":1},"a":'];
const answer = (mode, sizes, text) => Buffer.concat([Buffer.from(mode), Buffer.from(sizes), Buffer.from(text)]);
const HEAD = 'HTTP/1.1 200 OK\r\n';
const CHUNKED = `${HEAD}Transfer-Encoding: chunked\r\n\r\n`;
const ANSWERS = [
  `${CHUNKED}2\r\no\n\r\n0\r\n\r\n`, `${CHUNKED}2;x=y\r\no\n\r\n3\r\nh\nh\r\n1\r\n\n\r\n0\r\nTrailer: x\r\n\r\n`,
  `${HEAD}Content-Length: 5\r\n\r\na[1]\n`, `${HEAD}Content-Length: 0\r\n\r\n${HEAD}Content-Length: 2\r\n\r\no\n`,
  `${HEAD}\r\nno end\n`, `HTTP/1.1 100 Continue\r\n\r\n${HEAD}Content-Length: 1\r\n\r\nh`, 'HTTP/1.1 204 No Content\r\n\r\n',
  'HTTP/1.0 404 Not Found\r\nConnection: close\r\nSet-Cookie: a=b\r\nSet-Cookie: c=d; Path=/\r\n\r\ngone', 'garbage HTTP/\r\n\r\n',
  `${CHUNKED}ffffffffffffffff\r\n`, `${CHUNKED}-2\r\n`, `${HEAD}Content-Length: 99999999999999999999\r\n\r\n`, `${HEAD}: x\r\ny\r\n\r\n`,
];
const envelope = (data, more = {}) => JSON.stringify({ success: true, data, ...more });
const REPLIES = [
  envelope({ userLoginId: 'u', deviceAccessToken: 't', sessionCode: '1', sessionToken: 's', userToken: 'p', url: 'http://h/' }),
  envelope({ users: [{ mode: 'learner', userToken: 'd', userName: 'n', deviceType: 'x' }, 5, null, [], { mode: 'presenter' }] }),
  envelope({ users: {}, sockJSProtocols: ['websocket', 5, null, {}], id: 7, path: [] }),
  envelope({ name: 'x' }, { infoMsgs: ['login.success'] }), envelope({ name: 'x' }, { infoMsgKeys: ['success.registration'] }),
  envelope(null, { errorMsgKeys: ['error.login'] }), envelope([], { errorMsgKeys: 'error' }), envelope('x', { errorMsgKeys: [{}] }),
  'https://h:8443/x', 'http://[::1]:80/', '<html>', '', '[]', '\0{}',
];

// Each line of these stands there as often as its first letter says: see fuzz_Work.cpp.
const WORK = [
  'f\n0a["{}"]\n<a["{}","{}"]\n8a["{\\"body\\":{\\"type\\":\\"chat\\"}}"]', 'f\n0a[\n<"{}",\n0"{}"]', 'd\n0[\n<1,\n01]', 'd\n0"\n<93,0,\n00"',
  'd\n9{"a":\n0{}\n9}', 'd\n0[\n<"XQAA",\n0""]', 'p\n0{"\n@\\u0061\n0":{},"b":{}}', 'p\n0{"":{},\n<"a":0,\n0"b":1}', 'p\n9{"a":[],"a":\n00\n9,"a":[]}',
  'p\n0{"blob":{"pick":[\n<1,\n01]}}', 'p\n0{"blob":{"input":"\n<\\"\n0"}}', 'q\n0{"answer":"a","optionAnswers":[\n;{"activityOptionId":"B"},\n0{}]}',
  'j\n0{"userName":"\n=é\n0","deviceType":"x"}', 'u\n9[\n01\n9]', 'c\n;x\n;{"a":1}', 'c\n0{"a":"\n=x\n0"}',
];

export const handMade = {
  Json: [...HOSTILE, ...REPEATED],
  Message: [
    ...HOSTILE, ...REPEATED,
    ...COMMANDS.map((type) => message({ type, from: 'd', data: [OBJECT] })),
    ...['join', 'pollResponse', 'questionResponse', 'questionGet', 'chat'].flatMap((type) =>
      DATA.map((data) => message({ type, from: 'd', data }))),
    ...['user', 'controller', 'other'].map((type) => message({ action: 'unregister', client: { type, token: 't' } })),
  ],
  SockJSFrame: ['o', 'h', 'o\0o', 'c[3000,"Go away!"]', 'a[]', 'a["x"]\0a[1,null,{},[],true]', 'a', 'a{}', 'a["\\ud800"]', 'a["x"',
    `a${'['.repeat(1030)}`, 'a["x","y"]x', 'a [ "x" ] '],
  HttpResponse: ANSWERS.flatMap((text) => [answer('s', [1, 1, 1, 1], text), answer('p', [0, 3, 40, 2], text)]),
  Payload: ['s[93,0,0]', 's', `s${OBJECT}`, `c${OBJECT}\n\n${OBJECT}`, 'cbad\nworse', ...DATA.map((data) => `j${JSON.stringify(data)}`)],
  Reply: REPLIES.flatMap((body) => [...Array(17).keys()].flatMap((operation) =>
    [16, 17, 8, 4].map((bits) => Buffer.concat([Buffer.from([operation, bits]), Buffer.from(body)])))),
  Serializer: [...HOSTILE, '{"a":[1,1.5,1e300,-0,true,null,"\\ud83d\\ude00"],"b":{"c":{"d":{}}}}', '{"a":1,"a":2}', '{"":""}'],
  Work: WORK,
  Gzip: ['', '\x1f\x8b\x08', '\x78\x9c\x03\x00\x00\x00\x00\x01'].map((text) => Buffer.from(text, 'latin1')),
};
