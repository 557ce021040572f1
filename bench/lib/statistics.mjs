export function median(numbers) {
  const sorted = [...numbers].sort((a, b) => a - b);
  const middle = sorted.length >> 1;
  return sorted.length % 2 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

const digits = (value) => (Number.isInteger(value) ? `${value}` : value.toPrecision(3));

// Nanoseconds, with the unit that suits them.
export function duration(ns) {
  if (ns >= 1e9) return `${digits(ns / 1e9)} s`;
  if (ns >= 1e6) return `${digits(ns / 1e6)} ms`;
  if (ns >= 1e3) return `${digits(ns / 1e3)} µs`;
  return `${digits(ns)} ns`;
}

// Powers of two as such, other numbers in groups of three digits.
export function amount(size) {
  if (size >= 1 << 20 && size % (1 << 20) === 0) return `${size >> 20} Mi`;
  if (size >= 1 << 16 && size % (1 << 10) === 0) return `${size >> 10} Ki`;
  return size.toLocaleString('en');
}

export const bytes = (count) => `${(count / (1 << 20)).toFixed(1)} MiB`;

export const ratio = (value) => value.toFixed(2);
