// docs/protocol.md and the recorded texts in it: a comment "frame: NAME" or "data: NAME" stands before each block.
import { readFileSync, writeFileSync } from 'node:fs';
import { dataIn } from './frames.mjs';
import { SOURCE } from './programs.mjs';

const PATH = `${SOURCE}docs/protocol.md`;
const BLOCK = /<!-- (frame|data): (.+?) -->\n```\w*\n([\s\S]*?)```/g;

const pretty = (frame) => JSON.stringify(dataIn(frame), null, 2);

/** The blocks: {kind, name, text}. */
export function readBlocks() {
  return [...readFileSync(PATH, 'utf8').matchAll(BLOCK)].map(([, kind, name, text]) => ({ kind, name, text: text.trimEnd() }));
}

/** Puts what was recorded into the blocks. */
export function updateBlocks(recorded) {
  const fill = (block, kind, name) => {
    const frame = recorded.get(name);
    if (frame === undefined) throw new Error(`"${name}" was not recorded; there are:\n${[...recorded.keys()].join('\n')}`);
    const [language, text] = kind === 'data' ? ['json', pretty(frame)] : ['', frame.trimEnd()];
    return `<!-- ${kind}: ${name} -->\n\`\`\`${language}\n${text}\n\`\`\``;
  };
  writeFileSync(PATH, readFileSync(PATH, 'utf8').replace(BLOCK, fill));
}
