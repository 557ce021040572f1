// A drawing (SVG) of cost against size, both axes logarithmic, readable on light and on dark pages.

import { duration } from './statistics.mjs';

const SIZE = { width: 640, height: 380 };
const PLOT = { left: 84, right: 500, top: 24, bottom: 316 };

const STYLE = `
  text { font: 13px sans-serif; fill: #52514e; }
  .grid { stroke: #d5d3cc; stroke-width: 1; }
  .line { fill: none; stroke-width: 2; }
  .ours { stroke: #2a78d6; } .ours-dot { fill: #2a78d6; }
  .peer { stroke: #d1571f; } .peer-dot { fill: #d1571f; }
  .linear { stroke: #8a8880; stroke-width: 1.5; stroke-dasharray: 3 5; }
  @media (prefers-color-scheme: dark) {
    text { fill: #c9c7bf; }
    .grid { stroke: #3d3d3a; }
    .ours { stroke: #5b9ff0; } .ours-dot { fill: #5b9ff0; }
    .peer { stroke: #f08a54; } .peer-dot { fill: #f08a54; }
  }`;

const LABELS = {
  ours: '<tspan class="ours-dot">●</tspan> the library',
  peer: '<tspan class="peer-dot">■</tspan> its peer',
};

const round = (number) => Number(number.toFixed(1));

// Short, because the largest stand side by side.
const decade = (size) => (size >= 1e6 ? `${size / 1e6} M` : size >= 1e3 ? `${size / 1e3} k` : `${size}`);

// From numbers to places: the whole decades that hold them all.
function axis(values, from, to) {
  const first = Math.floor(Math.log10(Math.min(...values)));
  const last = Math.max(first + 1, Math.ceil(Math.log10(Math.max(...values))));
  const decades = Array.from({ length: last - first + 1 }, (_, i) => 10 ** (first + i));
  const place = (value) => round(from + ((Math.log10(value) - first) / (last - first)) * (to - from));
  return { decades, place };
}

const vertical = (x, label) => `<line class="grid" x1="${x}" y1="${PLOT.top}" x2="${x}" y2="${PLOT.bottom}"/>
<text x="${x}" y="${PLOT.bottom + 20}" text-anchor="middle">${label}</text>`;

const horizontal = (y, label) => `<line class="grid" x1="${PLOT.left}" y1="${y}" x2="${PLOT.right}" y2="${y}"/>
<text x="${PLOT.left - 8}" y="${y + 4}" text-anchor="end">${label}</text>`;

function curve(name, points) {
  const dots = points.map(([x, y]) => name === 'ours'
    ? `<circle class="ours-dot" cx="${x}" cy="${y}" r="4"/>`
    : `<rect class="peer-dot" x="${round(x - 4)}" y="${round(y - 4)}" width="8" height="8"/>`);
  return `<polyline class="line ${name}" points="${points.join(' ')}"/>\n${dots.join('\n')}`;
}

// The names beside the ends of the curves, which can be close together.
function names(ends) {
  const apart = 18;
  const sorted = [...ends].sort((a, b) => a.y - b.y);
  const middle = sorted.reduce((sum, { y }) => sum + y, 0) / sorted.length;
  const close = sorted.length > 1 && sorted[1].y - sorted[0].y < apart;
  return sorted.map(({ name, y }, i) => {
    const place = close ? middle + (i - 0.5) * apart : y;
    return `<text x="${PLOT.right + 10}" y="${round(place + 4)}">${LABELS[name]}</text>`;
  }).join('\n');
}

// What grows in proportion to size, through the cost of the largest.
function proportional(sizes, costs, x, y) {
  const [least, most, cost] = [sizes[0], sizes.at(-1), costs.at(-1)];
  const start = Math.max(least, (most / cost) * 10 ** Math.floor(Math.log10(Math.min(...costs))));
  return `<line class="linear" x1="${x.place(start)}" y1="${y.place((cost * start) / most)}" x2="${x.place(most)}" y2="${y.place(cost)}"/>`;
}

export function plot({ name, unit, sizes }) {
  const counts = sizes.map(({ size }) => size);
  const sides = ['ours', 'peer'].filter((side) => sizes[0][side]);
  const costs = (side) => sizes.map((entry) => entry[side].median);
  const x = axis(counts, PLOT.left, PLOT.right);
  const y = axis(sides.flatMap(costs), PLOT.bottom, PLOT.top);
  const curves = sides.map((side) => ({ side, points: costs(side).map((cost, i) => [x.place(counts[i]), y.place(cost)]) }));
  return `<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 ${SIZE.width} ${SIZE.height}" role="img">
<title>${name}: time against ${unit}</title>
<style>${STYLE}
</style>
${x.decades.map((size) => vertical(x.place(size), decade(size))).join('\n')}
${y.decades.map((cost) => horizontal(y.place(cost), duration(cost))).join('\n')}
${proportional(counts, costs('ours'), x, y)}
${curves.map(({ side, points }) => curve(side, points)).reverse().join('\n')}
${names(curves.map(({ side, points }) => ({ name: side, y: points.at(-1)[1] })))}
<text x="${(PLOT.left + PLOT.right) / 2}" y="${PLOT.bottom + 46}" text-anchor="middle">${unit} (dotted: in proportion)</text>
<text transform="translate(18 ${(PLOT.top + PLOT.bottom) / 2}) rotate(-90)" text-anchor="middle">CPU time</text>
</svg>
`;
}
