// What runs the programs of one round and gives their numbers as { row, size, side, value }.

import { execFileSync, spawn } from 'node:child_process';
import { once } from 'node:events';
import { join } from 'node:path';

import { median } from './statistics.mjs';

const NANOSECONDS = { ns: 1, us: 1e3, ms: 1e6, s: 1e9 };
const BURSTS = { websocket: 100000, 'xhr-streaming': 20000, 'xhr-polling': 20000 };
const SINGLES = 50;
const PICTURE = 8; // MiB

const run = (command, parameters) =>
  execFileSync(command, parameters, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'ignore'], maxBuffer: 1 << 26 });

// A name is ROW/SIZE/SIDE, and what Google Benchmark adds when it was told to take other than CPU time.
export function runGoogleBenchmark(build, program, names, seconds) {
  const output = run(join(build, 'bench', program), ['--benchmark_format=json', `--benchmark_min_time=${seconds}`,
    `--benchmark_filter=^(${names.join('|')})/`]);
  return JSON.parse(output).benchmarks.map((result) => {
    const [row, size, side] = result.name.split('/');
    const time = /\/(real_time|manual_time)$/.test(result.name) ? result.real_time : result.cpu_time;
    return { row, size: Number(size), side, value: time * NANOSECONDS[result.time_unit] };
  });
}

async function startServer(project) {
  const server = spawn('node', [join(project, 'bench/peers/server.cjs')], { stdio: ['pipe', 'pipe', 'inherit'] });
  const [line] = await once(server.stdout.setEncoding('utf8'), 'data');
  return { server, port: line.trim().split(' ')[1] };
}

// Both clients at the same npm `sockjs` server.
export async function runBus(project, build, rows) {
  const { server, port } = await startServer(project);
  const clients = {
    ours: (...parameters) => run(join(build, 'bench/bench_client'), parameters),
    peer: (...parameters) => run('node', [join(project, 'bench/peers/client.cjs'), ...parameters]),
  };
  const values = [];
  for (const { name, transport, kind } of rows.filter((row) => row.program === 'bench_client')) {
    const count = kind === 'singles' ? SINGLES : BURSTS[transport];
    for (const [side, client] of Object.entries(clients)) {
      const { durations, cpu } = JSON.parse(client(port, transport, kind, String(count)));
      values.push({ row: name, size: kind === 'singles' ? 1 : count, side, value: median(durations) });
      if (kind === 'burst') values.push({ row: `${name}-cpu`, size: count, side, value: cpu });
    }
  }
  server.stdin.end();
  await once(server, 'exit');
  return values;
}

export function runCard(build) {
  const { picture, frame, peak, bare } = JSON.parse(run(join(build, 'bench/bench_card'), [String(PICTURE)]));
  return [
    { row: 'card-memory', size: picture, side: 'ours', value: peak },
    { row: 'card-memory', size: picture, side: 'peer', value: 4 * frame + picture },
    { row: 'card-memory', size: picture, side: 'bare', value: bare },
  ];
}
