import { amount, bytes, duration, ratio as number } from './statistics.mjs';

function goalOf(goal, size) {
  if (!goal) return '';
  if (goal.milliseconds !== undefined) return size === goal.size ? `< ${goal.milliseconds} ms` : '';
  return `≤ ${number(goal.at?.[size] ?? goal.most)}`;
}

function isMet(goal, { size, ours, ratio }) {
  if (!goalOf(goal, size)) return '';
  const met = goal.milliseconds !== undefined
    ? ours.median < goal.milliseconds * 1e6
    : ratio <= (goal.at?.[size] ?? goal.most);
  return met ? 'yes' : 'no';
}

export const line = (cells) => `| ${cells.join(' | ')} |`;

// The results as a table in Markdown.
export function table({ rows }) {
  const lines = [
    line(['row', 'size', 'ours', 'peer', 'ratio', 'goal', 'met', 'ours, each']),
    line(['---', '---:', '---:', '---:', '---:', '---:', '---', '---:']),
  ];
  for (const { name, unit, goal, sizes, measure } of rows) {
    const show = measure === 'bytes' ? bytes : duration;
    for (const entry of sizes) {
      const { size, ours, peer, ratio } = entry;
      lines.push(line([name, `${amount(size)} ${unit}`, show(ours.median), peer ? show(peer.median) : '',
        ratio === undefined ? '' : number(ratio), goalOf(goal, size), isMet(goal, entry),
        measure === 'bytes' ? '' : duration(ours.median / size)]));
    }
  }
  return lines.join('\n');
}
