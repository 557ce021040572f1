import { parseArgs } from 'node:util';

/** What is wrong with the command line; the message is for the user. */
export class UsageError extends Error {}

/** The values of the command line's options; nothing but options is allowed. */
export function parseOptions(args, options) {
  try {
    return parseArgs({ args, options: { ...options, help: { type: 'boolean', short: 'h' } } }).values;
  } catch (error) {
    throw new UsageError(error.message);
  }
}

export function wholeNumber(name, text, least, most) {
  const value = Number(text);
  if (!/^\d+$/.test(text) || value < least || value > most) {
    throw new UsageError(`--${name} takes a number from ${least} to ${most}, not "${text}"`);
  }
  return value;
}

export function commaList(text) {
  return text.split(',').map((name) => name.trim()).filter((name) => name !== '');
}

/** Runs a program: --help and a wrong command line are dealt with here. */
export async function runProgram(usage, read, run) {
  try {
    const settings = read(process.argv.slice(2));
    if (settings.help) {
      process.stdout.write(usage);
      return;
    }
    process.exitCode = await run(settings);
  } catch (error) {
    const wrongUsage = error instanceof UsageError;
    process.stderr.write(wrongUsage ? `${error.message}\n\n${usage}` : `${error.message}\n`);
    process.exitCode = wrongUsage ? 2 : 1;
  }
}

/** Resolves at the first SIGINT or SIGTERM. */
export function untilSignalled() {
  return new Promise((resolve) => {
    for (const signal of ['SIGINT', 'SIGTERM']) process.once(signal, resolve);
  });
}
