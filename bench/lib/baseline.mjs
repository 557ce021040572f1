import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const [file, build, option] = process.argv.slice(2);
const MOST_GROWTH = 1.05;
const MOST_WORK = 20; // of a byte of the worst message, in bytes of a harmless one
const REPETITIONS = 20;
const MOST_BYTES = 200000; // of a row in all its repetitions

const program = join(build, 'bench/count_instructions');
const folder = mkdtempSync(join(tmpdir(), 'instructions-'));

// What differs between machines of the same system: the C library's and Qt's choices by processor, and hash seeds.
const environment = {
  ...process.env,
  GLIBC_TUNABLES: 'glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX2,-AVX,-ERMS,-FSRM',
  QT_NO_CPU_FEATURE: 'avx avx2 avx512f sse4.1 sse4.2',
  QT_HASH_SEED: '0',
  LC_ALL: 'C.UTF-8',
};

function run(command, parameters) {
  return execFileSync(command, parameters, { env: environment, encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });
}

// Instructions of one operation, or of a byte of it, those inside countedWork() only.
function count(name, bytes) {
  const repetitions = Math.max(1, Math.min(REPETITIONS, Math.floor(MOST_BYTES / bytes)));
  const output = join(folder, 'callgrind.out');
  run('valgrind', ['--tool=callgrind', `--callgrind-out-file=${output}`, '--toggle-collect=countedWork', '--quiet',
    program, name, String(repetitions)]);
  const total = /^(?:summary|totals): (\d+)/m.exec(readFileSync(output, 'utf8'));
  if (!total || total[1] === '0') throw new Error(`callgrind has counted nothing of ${name}`);
  return Math.round(Number(total[1]) / repetitions / bytes);
}

function compare(counts) {
  const baseline = JSON.parse(readFileSync(file, 'utf8'));
  const names = new Set([...Object.keys(baseline), ...Object.keys(counts)]);
  let failed = false;
  for (const name of names) {
    const [before, now] = [baseline[name], counts[name]];
    const missing = before === undefined ? 'not in the baseline' : now === undefined ? 'not counted any more' : '';
    const verdict = missing || (now > before * MOST_GROWTH ? 'GROWN' : '');
    failed ||= verdict !== '';
    const change = missing ? '' : `${((now / before - 1) * 100).toFixed(1)} %`;
    console.log(`${name.padEnd(20)} ${String(before ?? '').padStart(12)} ${String(now ?? '').padStart(12)} ${change.padStart(8)} ${verdict}`);
  }
  return failed;
}

// No message may cost a host much more for each byte than a harmless one does.
function isWorkBounded(counts) {
  const work = Object.entries(counts).filter(([name]) => name.startsWith('work-'));
  const [, harmless] = work.find(([name]) => name.startsWith('work-harmless'));
  const tooMuch = work.filter(([, perByte]) => perByte > harmless * MOST_WORK);
  for (const [name, perByte] of tooMuch) console.log(`${name}: ${perByte} instructions for a byte, a harmless one ${harmless}`);
  return tooMuch.length === 0;
}

try {
  const counts = {};
  for (const line of run(program, []).trim().split('\n')) {
    const [name, bytes] = line.split(' ');
    counts[name] = count(name, Number(bytes));
  }
  if (!isWorkBounded(counts)) process.exitCode = 1;
  if (option === '--write') writeFileSync(file, `${JSON.stringify(counts, null, 1)}\n`);
  else if (compare(counts)) process.exitCode = 1;
} finally {
  rmSync(folder, { recursive: true });
}
