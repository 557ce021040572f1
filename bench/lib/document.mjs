// node bench/lib/document.mjs: writes bench/results.json into docs/performance.md, between its marks, and draws the rows with
// several sizes into docs/images.

import { readFileSync, writeFileSync } from 'node:fs';
import { fileURLToPath } from 'node:url';

import { plot } from './plot.mjs';
import { ratio as number } from './statistics.mjs';
import { line, table } from './table.mjs';

const path = (name) => fileURLToPath(new URL(`../../${name}`, import.meta.url));
const results = JSON.parse(readFileSync(path('bench/results.json'), 'utf8'));
const several = results.rows.filter(({ sizes }) => sizes.length > 1);
const drawn = several.filter(({ name }) => !/-(frame|unsent)$/.test(name)); // those have the curve of their row

// Cost per item, of each size as a multiple of the size before it.
function steps(sizes, side) {
  const each = sizes.map((entry) => entry[side].median / entry.size);
  return each.slice(1).map((cost, i) => number(cost / each[i])).join(', ');
}

const growth = () => [
  line(['row', 'sizes', 'the library', 'its peer']), line(['---', '---', '---', '---']),
  ...several.map(({ name, unit, sizes }) => line([name, `${sizes.map(({ size }) => size).join(', ')} ${unit}`,
    steps(sizes, 'ours'), steps(sizes, 'peer')])),
].join('\n');

const rows = () => [
  line(['row', 'what', 'against']), line(['---', '---', '---']),
  ...results.rows.map(({ name, what, peer }) => line([name, what, peer ?? ''])),
].join('\n');

const parts = {
  rows: rows(),
  results: `At least ${results.rounds} rounds on ${results.machine}.\n\n${table(results)}`,
  growth: growth(),
  plots: drawn.map(({ name, what }) => `![${name}: ${what.replaceAll('`', '')}](images/performance-${name}.svg)`).join('\n\n'),
};

for (const row of drawn) writeFileSync(path(`docs/images/performance-${row.name}.svg`), plot(row));

const file = path('docs/performance.md');
const written = readFileSync(file, 'utf8').replace(/(<!-- (\w+) -->\n)[^]*?(<!-- end -->)/g, (whole, begin, name, end) => {
  if (!(name in parts)) throw new Error(`nothing is called ${name}`);
  return `${begin}\n${parts[name]}\n\n${end}`;
});
writeFileSync(file, written);
