import { execFileSync } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import os from 'node:os';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

import { rows } from './rows.mjs';
import { median } from './statistics.mjs';
import { table } from './table.mjs';

const { values: options, positionals: [project, build] } = parseArgs({
  allowPositionals: true,
  options: {
    rounds: { type: 'string', default: '7' },
    rows: { type: 'string', default: '' },
    seconds: { type: 'string', default: '0.1' },
    output: { type: 'string' },
  },
});

// name -> sizes -> { ours: [ns, ...], peer: [ns, ...] }, one number for each round.
const samples = new Map();

function keep(row, size, side, ns) {
  if (!samples.has(row)) samples.set(row, new Map());
  const sizes = samples.get(row);
  if (!sizes.has(size)) sizes.set(size, { ours: [], peer: [] });
  sizes.get(size)[side].push(ns);
}

// One round of the in-memory rows: each row's two sides one after the other. CPU time: other programs share the processors.
function runInMemory() {
  const output = execFileSync(join(build, 'bench/bench_memory'), [
    '--benchmark_format=json',
    `--benchmark_min_time=${options.seconds}`,
    ...(options.rows ? [`--benchmark_filter=^(${options.rows})/`] : []),
  ], { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 1 << 26 });
  if (!output.trim()) return; // no row of this program matches
  for (const { name, cpu_time: time, time_unit: unit } of JSON.parse(output).benchmarks) {
    const [row, size, side] = name.split('/');
    keep(row, Number(size), side, time * { ns: 1, us: 1e3, ms: 1e6, s: 1e9 }[unit]);
  }
}

function summary(size, { ours, peer }) {
  const ratios = ours.map((time, round) => time / peer[round]);
  return {
    size,
    ours: { median: median(ours), least: Math.min(...ours) },
    peer: { median: median(peer), least: Math.min(...peer) },
    ratio: median(ratios), // of the rounds, whose two sides run one after the other
  };
}

function results() {
  return {
    rounds: Number(options.rounds),
    machine: `${os.cpus().length} x ${os.cpus()[0].model.trim()}`,
    rows: rows.filter(({ name }) => samples.has(name)).map((row) => ({
      ...row,
      sizes: [...samples.get(row.name)].map(([size, sides]) => summary(size, sides)).sort((a, b) => a.size - b.size),
    })),
  };
}

// Rows that were not run this time stay as they were.
function merged(file, fresh) {
  let before = { rows: [] };
  try {
    before = JSON.parse(readFileSync(file, 'utf8'));
  } catch {
    // the first run
  }
  const all = new Map([...before.rows, ...fresh.rows].map((row) => [row.name, row]));
  return { ...fresh, rows: rows.map(({ name }) => all.get(name)).filter(Boolean) };
}

for (let round = 1; round <= Number(options.rounds); round += 1) {
  process.stderr.write(`round ${round} of ${options.rounds}\n`);
  runInMemory();
}
const fresh = results();
console.log(table(fresh));
const file = options.output ?? join(project, 'bench/results.json');
writeFileSync(file, `${JSON.stringify(merged(file, fresh), null, 1)}\n`);
