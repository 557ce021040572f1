// The browser's storage, which may be missing, full or forbidden: then nothing is kept, and nothing fails.

export function recall(storage, key) {
  try {
    return JSON.parse(globalThis[storage].getItem(key));
  } catch {
    return null;
  }
}

/** Keeps a value, or drops it for null; true when that has worked. */
export function remember(storage, key, value) {
  try {
    if (value === null) globalThis[storage].removeItem(key);
    else globalThis[storage].setItem(key, JSON.stringify(value));
    return true;
  } catch {
    return false;
  }
}
