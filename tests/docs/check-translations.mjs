// Fails on a text for people that cannot be translated, on one that is not, and on a translation that cannot stand in for its
// source. Arguments: Qt's lupdate, and the folder with the generated headers.
import { execFileSync } from 'node:child_process';
import { copyFileSync, mkdtempSync, readdirSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const project = new URL('../..', import.meta.url).pathname;
const [lupdate, generated] = process.argv.slice(2);
const parts = { calyxclient: 'src/lesson', desk: 'examples/desk', slate: 'examples/slate', 'calyx-presenter': 'presenter/src' };
const faults = [];

// Two words, or one that begins like a sentence or a title.
const FOR_PEOPLE = /[A-Za-z]{2,}[,;:.)]* +\(?[A-Za-z%]|^\W*[A-Z][a-z]{2,}[.:!?…]*$/;
// Calls whose texts are translated, or are not for people: tables for programs, types and names within Qt.
const FREE = /^(tr|qsTr|translate|QT_TRANSLATE_N?_?NOOP|QT_TR_NOOP|csvLine|csvRow|invokeMethod|setObjectName|make<.*)$/;
// For the wire and for programs, in every language.
const FIXED = [
  ...['Learner', 'Device', 'Right'].map((title) => `src/lesson/Assessment.cpp: ${title}`),
  'src/lesson/LessonMessages.cpp: Assessment',
  'src/lesson/LessonContent.h: Lesson',
  'presenter/src/app/Runner.cpp: session stop',
  'presenter/src/app/main.cpp: calyx-presenter %1\\n',
  'presenter/src/app/main.cpp: calyx-presenter: %1\\n%2\\n',
  'presenter/src/commands/Ending.cpp: late answer', // which Text::count() looks up
  'presenter/src/terminal/UnixSignals.cpp: No pipe for signals',
];
const TOKEN = /\/\/.*|\/\*[\s\S]*?\*\/|^ *#.*|R"(\w*)\([\s\S]*?\)\1"|"((?:\\.|[^"\\\n])*)"|'(?:\\.|[^'\\])'|([\w:<>]+) *\(|[(){}]/gm;

// The literals of a source, with the calls that they stand in.
function* literals(source) {
  const calls = [];
  for (const token of source.matchAll(TOKEN)) {
    const [text, , literal, call] = token;
    if (call !== undefined) calls.push(call.replace(/.*::/, ''));
    else if (text === '(') calls.push('');
    else if (text === ')') calls.pop();
    else if (literal !== undefined) yield { literal, calls, line: source.slice(0, token.index).split('\n').length };
  }
}

const files = (folder) =>
  readdirSync(join(project, folder), { recursive: true })
    .filter((name) => /\.(cpp|h|qml)$/.test(name) && !name.startsWith('tests'))
    .map((name) => join(folder, name));

// Of a row of the console's commands: its name and what follows it, and the words that it knows.
const SYNTAX = /^ {8}\{"[^"]*", "[^"]*", |\}, "[^"]*", [\w:]+/gm;

function checkSource(file) {
  const source = readFileSync(join(project, file), 'utf8').replace(SYNTAX, '{');
  for (const { literal, calls, line } of literals(source))
    if (FOR_PEOPLE.test(literal.replace(/\\u\w{4}|\\x\w\w|\\./g, ' ')) && !calls.some((call) => FREE.test(call)) && !FIXED.includes(`${file}: ${literal}`))
      faults.push(`${file}:${line}: cannot be translated: "${literal}"`);
}

const sorted = (text, pattern) => (text.match(pattern) ?? []).sort().join();

function checkMessage(catalogue, message) {
  const source = message.match(/<source>([\s\S]*?)<\/source>/)[1];
  const forms = [...message.matchAll(/<(translation|numerusform)>([^<]*[^<\s][^<]*)</g)].map((match) => match[2]);
  const fault = (what) => faults.push(`${catalogue}: ${what}: "${source}"`);
  if (/type="/.test(message) || forms.length === 0) fault('not translated');
  for (const form of forms) {
    if (sorted(source, /%(\d|n)/g) !== sorted(form, /%(\d|n)/g)) fault('other places to fill in');
    for (const edge of [/^\s*/, /\s*$/, /[.…:]?\s*$/])
      if (source.match(edge)[0].replace(/\u00a0/g, '') !== form.match(edge)[0].replace(/\u00a0/g, '')) fault('begins or ends otherwise');
    if (/&amp;\w/.test(form) && !/&amp;\w/.test(source)) fault('has a shortcut key');
  }
}

function checkCatalogue(name, language, folder) {
  const catalogue = `translations/${name}_${language}.ts`;
  const copy = join(folder, 'copy.ts');
  const before = readFileSync(join(project, catalogue), 'utf8');
  copyFileSync(join(project, catalogue), copy);
  const options = ['-silent', '-no-obsolete', '-locations', 'none', '-source-language', 'en', '-I', 'src', '-I', generated];
  execFileSync(lupdate, [...options, parts[name], '-ts', copy], { cwd: project, stdio: 'pipe' });
  if (readFileSync(copy, 'utf8') !== before) faults.push(`${catalogue} is not up to date: build the target update-translations`);
  const messages = before.match(/<message[\s\S]*?<\/message>/g) ?? [];
  if (messages.length === 0) faults.push(`${catalogue} is empty`);
  messages.forEach((message) => checkMessage(catalogue, message));
}

const folder = mkdtempSync(join(tmpdir(), 'translations-'));
for (const [name, sources] of Object.entries(parts)) {
  files(sources).forEach(checkSource);
  for (const language of ['de', 'fr']) checkCatalogue(name, language, folder);
}
rmSync(folder, { recursive: true });
if (faults.length > 0) throw new Error(`${faults.length} faults:\n${faults.join('\n')}`);
