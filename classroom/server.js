import { isIP } from 'node:net';
import { basename } from 'node:path';
import { Classroom } from './lib/classroom.js';
import { COMMANDS, Commands } from './lib/commands.js';
import {
  UsageError, commaList, parseOptions, runProgram, untilSignalled, wholeNumber,
} from './lib/command-line.js';

// By the name under which it is installed.
const NAME = basename(process.argv[1]) === 'server.js' ? 'node server.js' : basename(process.argv[1]);

const USAGE = `usage: ${NAME} [options]

Runs the local classroom: the classroom service and its event bus, in memory.
Prints "listening http://HOST:PORT" when it is ready; SIGINT or SIGTERM ends it.
Where others than this machine reach it, the built-in accounts are closed. Without
--user it makes a password then, and prints "password of teacher: PASSWORD".

  --host HOST                the address to bind to (127.0.0.1)
  --name NAME                one more name by which browsers may ask for it; may be given again
  --proxy ADDRESS            a reverse proxy at that address stands in front, and says in X-Forwarded-For
                             for whom it asks
  --port PORT                the port; 0, the default, takes a free one
  --user NAME:PASSWORD       one more account; may be given again
  --gzip                     send the service's replies gzip-encoded
  --sockjs-transports LIST   the tenant's transports, as the service names them
                             (websocket,xhr-streaming,xhr-polling)
  --disable-websocket        let the event bus refuse WebSockets
  --quiet                    no line on stderr for each request
  --commands                 take commands on stdin, and end when that ends
  --answer-after MS          learners who joined by command answer by themselves, after that time
  --help                     this text

${COMMANDS}`;

const OPTIONS = {
  host: { type: 'string', default: '127.0.0.1' },
  port: { type: 'string', default: '0' },
  name: { type: 'string', multiple: true, default: [] },
  proxy: { type: 'string' },
  user: { type: 'string', multiple: true, default: [] },
  gzip: { type: 'boolean', default: false },
  'sockjs-transports': { type: 'string' },
  'disable-websocket': { type: 'boolean', default: false },
  quiet: { type: 'boolean', default: false },
  commands: { type: 'boolean', default: false },
  'answer-after': { type: 'string' },
};

function account(text) {
  const match = /^([^:]+):(.+)$/.exec(text);
  if (!match) throw new UsageError(`--user takes NAME:PASSWORD, not "${text}"`);
  return { userId: match[1], password: match[2] };
}

function address(text) {
  if (text !== undefined && !isIP(text)) throw new UsageError(`--proxy takes an address, not "${text}"`);
  return text;
}

function read(args) {
  const values = parseOptions(args, OPTIONS);
  const transports = values['sockjs-transports'];
  const answerAfter = values['answer-after'];
  return {
    help: values.help,
    host: values.host,
    port: wholeNumber('port', values.port, 0, 65535),
    commands: values.commands,
    learners: { answerAfter: answerAfter && wholeNumber('answer-after', answerAfter, 0, 3600000) },
    classroom: {
      users: values.user.map(account),
      names: values.name,
      proxy: address(values.proxy),
      gzip: values.gzip,
      websocket: !values['disable-websocket'],
      ...(transports === undefined ? {} : { sockjsTransports: commaList(transports) }),
      ...(values.quiet ? {} : { log: (line) => process.stderr.write(`${line}\n`) }),
    },
  };
}

async function run({ host, port, commands, learners, classroom: options }) {
  const signalled = untilSignalled();
  const classroom = new Classroom(options);
  const url = await classroom.listen(host, port);
  process.stdout.write(`listening ${url}\n`);
  const { madeAccount: made } = classroom;
  if (made) process.stdout.write(`password of ${made.userId}: ${made.password}\n`);
  const given = new Commands(classroom, { ...learners, url, note: (line) => classroom.log(line) });
  await Promise.race([signalled, ...(commands ? [given.obeyAll(process.stdin, process.stdout)] : [])]);
  await classroom.close();
  // Timers of closed bus connections would keep the process for seconds more.
  process.exit(0);
}

await runProgram(USAGE, read, run);
