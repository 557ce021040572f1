// What the documents show of programs must be what the programs say. A comment "shown: FILE" or "shown: FILE [NAME]"
// stands before a code block of a document: the block is that file, or what stands in it between two marks of that name.
// In README.md and in the host guide every block of C++ and CMake is shown that way, and the guide leaves no mark out.
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { SOURCE } from './support/programs.mjs';

const DOCUMENTS = ['README.md', 'docs/host-guide.md'];
const GUIDE = 'examples/guide';
const MARK = /^\s*(?:\/\/|#) \[([\w-]+)\]$/;
const BLOCK = /(?:<!-- shown: (\S+?)(?: \[([\w-]+)\])? -->\n)?^```(\w*)\n([\s\S]*?)^```$/gm;

const faults = [];
const read = (path) => readFileSync(join(SOURCE, path), 'utf8');

function dedented(lines) {
  const depth = Math.min(...lines.filter((line) => line !== '').map((line) => line.search(/\S/)));
  return `${lines.map((line) => line.slice(depth)).join('\n').trim()}\n`;
}

/** The pieces of a file between marks, by name; pieces of one name are put together. */
function regionsOf(path) {
  const regions = new Map();
  let open;
  for (const line of read(path).split('\n')) {
    const [, name] = MARK.exec(line) ?? [];
    if (name) {
      if (open && open !== name) faults.push(`${path}: [${name}] begins inside [${open}]`);
      open = open ? undefined : name;
      if (!regions.has(name)) regions.set(name, []);
    } else if (open) {
      regions.get(open).push(line);
    }
  }
  if (open) faults.push(`${path}: [${open}] does not end`);
  return regions;
}

const shown = new Set();
for (const document of DOCUMENTS) {
  let marked = 0;
  for (const [, path, name, language, text] of read(document).matchAll(BLOCK)) {
    if (!path) {
      if (['cpp', 'cmake'].includes(language)) faults.push(`${document}: a block of nowhere:\n${text}`);
      continue;
    }
    marked += 1;
    const region = name && regionsOf(path).get(name);
    if (name && !region) faults.push(`${document}: ${path} has no [${name}]`);
    const expected = name ? region && dedented(region) : read(path);
    if (expected && text !== expected) faults.push(`${document}: ${path} ${name ?? ''} is not as shown:\n${expected}`);
    shown.add(`${path} ${name ?? ''}`);
  }
  if (marked === 0) faults.push(`${document}: shows nothing`);
}

for (const file of readdirSync(join(SOURCE, GUIDE))) {
  for (const name of regionsOf(`${GUIDE}/${file}`).keys()) {
    if (!shown.has(`${GUIDE}/${file} ${name}`)) faults.push(`[${name}] of ${GUIDE}/${file} is not in the guide`);
  }
}

if (faults.length > 0) {
  console.error(faults.join('\n'));
  process.exit(1);
}
