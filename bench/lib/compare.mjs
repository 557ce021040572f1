import { readFileSync, writeFileSync } from 'node:fs';
import os from 'node:os';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

import { rows } from './rows.mjs';
import { runBus, runCard, runGoogleBenchmark } from './runs.mjs';
import { median } from './statistics.mjs';
import { table } from './table.mjs';

const { values: options, positionals: [project, build] } = parseArgs({
  allowPositionals: true,
  options: {
    rounds: { type: 'string', default: '7' },
    rows: { type: 'string', default: '.*' },
    seconds: { type: 'string', default: '0.1' },
    output: { type: 'string' },
  },
});
const wanted = rows.filter(({ name }) => new RegExp(`^(${options.rows})$`).test(name));

// name -> size -> { ours: [number, ...], peer: [number, ...], ... }, one number for each round.
const samples = new Map(wanted.map(({ name }) => [name, new Map()]));

function keep({ row, size, side, value }) {
  const sizes = samples.get(row);
  if (!sizes) return;
  if (!sizes.has(size)) sizes.set(size, {});
  (sizes.get(size)[side] ??= []).push(value);
}

async function runRound() {
  for (const program of ['bench_memory', 'bench_sockets', 'bench_lesson']) {
    const names = wanted.filter((row) => row.program === program).map(({ name }) => name);
    if (names.length) runGoogleBenchmark(build, program, names, options.seconds).forEach(keep);
  }
  if (wanted.some((row) => row.program === 'bench_client')) (await runBus(project, build, wanted)).forEach(keep);
  if (wanted.some((row) => row.program === 'bench_card')) runCard(build).forEach(keep);
}

const summary = (values) => values && { median: median(values), least: Math.min(...values) };

function summaries(size, { ours, peer, bare }) {
  // Of the rounds: the two sides of a round run one after the other.
  const ratio = peer ? median(ours.map((value, round) => value / peer[round])) : undefined;
  return { size, ours: summary(ours), peer: summary(peer), bare: summary(bare), ratio };
}

function results() {
  return {
    rounds: Number(options.rounds),
    machine: `${os.cpus().length} x ${os.cpus()[0].model.trim()}`,
    rows: wanted.map((row) => ({
      ...row,
      sizes: [...samples.get(row.name)].map(([size, sides]) => summaries(size, sides)).sort((a, b) => a.size - b.size),
    })),
  };
}

// Rows that were not run this time stay as they were.
function merged(file, fresh) {
  let before = { rounds: fresh.rounds, rows: [] };
  try {
    before = JSON.parse(readFileSync(file, 'utf8'));
  } catch {
    // the first run
  }
  const all = new Map([...before.rows, ...fresh.rows].map((row) => [row.name, row]));
  const least = Math.min(before.rounds, fresh.rounds);
  return { ...fresh, rounds: least, rows: rows.map(({ name }) => all.get(name)).filter(Boolean) };
}

for (let round = 1; round <= Number(options.rounds); round += 1) {
  process.stderr.write(`round ${round} of ${options.rounds}\n`);
  await runRound();
}
const fresh = results();
console.log(table(fresh));
const file = options.output ?? join(project, 'bench/results.json');
writeFileSync(file, `${JSON.stringify(merged(file, fresh), null, 1)}\n`);
