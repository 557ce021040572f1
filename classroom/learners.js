#!/usr/bin/env node
import {
  UsageError, commaList, parseOptions, runProgram, untilSignalled, wholeNumber,
} from './lib/command-line.js';
import { Crowd, findSession, waitForSession } from './lib/crowd.js';

const USAGE = `usage: node learners.js --url URL --session CODE|auto --count N [options]

Joins simulated learners to a session of the classroom at URL. They answer what they are asked until
the session ends, then one line of totals is printed and, for each assessment, a table of what they meant
to answer. Exit status 0: all have joined, none has lost the service, and everything that they were
sent could be decoded.

  --url URL            the classroom's address
  --session CODE|auto  the code of a started session; "auto" takes the newest whose presenter is
                       on the bus, or waits for one
  --count N            how many learners
  --answer-after MS    how long each thinks before it answers (0)
  --repeat             when a session has ended, wait for the next, until SIGINT or SIGTERM
  --reconnect          make lost connections again, and send the answers to open questions once more
  --transports LIST    the SockJS transports to use (all): websocket,xhr-streaming,xhr-polling
  --quiet              nothing on stderr
  --help               this text
`;

const OPTIONS = {
  url: { type: 'string' },
  session: { type: 'string' },
  count: { type: 'string' },
  'answer-after': { type: 'string', default: '0' },
  repeat: { type: 'boolean', default: false },
  reconnect: { type: 'boolean', default: false },
  transports: { type: 'string' },
  quiet: { type: 'boolean', default: false },
};

function baseUrl(text) {
  if (!/^https?:\/\/[^/\s]+/.test(text)) throw new UsageError(`--url takes an address, not "${text}"`);
  return text.replace(/\/$/, '');
}

function sessionCode(text) {
  if (text !== 'auto' && !/^\d{6}$/.test(text)) throw new UsageError(`--session takes six digits or "auto", not "${text}"`);
  return text;
}

function read(args) {
  const values = parseOptions(args, OPTIONS);
  if (values.help) return values;
  for (const name of ['url', 'session', 'count']) {
    if (values[name] === undefined) throw new UsageError(`--${name} is missing`);
  }
  return {
    session: sessionCode(values.session),
    repeat: values.repeat,
    crowd: {
      url: baseUrl(values.url),
      count: wholeNumber('count', values.count, 1, 10000),
      answerAfter: wholeNumber('answer-after', values['answer-after'], 0, 3600000),
      reconnect: values.reconnect,
      transports: values.transports === undefined ? undefined : commaList(values.transports),
      note: values.quiet ? () => {} : (line) => process.stderr.write(`${line}\n`),
    },
  };
}

// The sequence number is only asked for when there is a next session to tell from this one: the list of
// sessions is for this machine, a code is for everyone.
function firstSession(url, session, repeat, signal) {
  if (session === 'auto') return waitForSession(url, 0, signal);
  return repeat ? findSession(url, session, signal) : { code: session };
}

async function attendAll(crowd, { session, repeat, crowd: { url } }, signal) {
  let next = await firstSession(url, session, repeat, signal);
  for (;;) {
    await crowd.attend(next.code, signal);
    if (!repeat || signal.aborted) return;
    next = await waitForSession(url, next.sequence, signal);
  }
}

async function run(settings) {
  const abort = new AbortController();
  untilSignalled().then(() => abort.abort());
  const crowd = new Crowd(settings.crowd);
  try {
    await attendAll(crowd, settings, abort.signal);
  } catch (error) {
    if (!abort.signal.aborted) throw error;
  }
  process.stdout.write([crowd.summary(), ...crowd.meantAnswers(), ''].join('\n'));
  // Clients that have been closed keep timers for a while.
  process.exit(crowd.ok ? 0 : 1);
}

await runProgram(USAGE, read, run);
