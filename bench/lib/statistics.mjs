export function median(numbers) {
  const sorted = [...numbers].sort((a, b) => a - b);
  const middle = sorted.length >> 1;
  return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

// Nanoseconds, with the unit that suits them.
export function duration(ns) {
  if (ns >= 1e9) return `${(ns / 1e9).toPrecision(3)} s`;
  if (ns >= 1e6) return `${(ns / 1e6).toPrecision(3)} ms`;
  if (ns >= 1e3) return `${(ns / 1e3).toPrecision(3)} µs`;
  return `${ns.toPrecision(3)} ns`;
}

export function amount(size) {
  if (size >= 1 << 20) return `${size >> 20} Mi`;
  if (size >= 1 << 16) return `${size >> 10} Ki`;
  return `${size}`;
}

export const bytes = (count) => `${(count / (1 << 20)).toFixed(1)} MiB`;

export const ratio = (value) => value.toFixed(2);
