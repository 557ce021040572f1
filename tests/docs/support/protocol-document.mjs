// docs/protocol.md and the recorded texts in it: a comment "frame: NAME" or "data: NAME" stands before each block.
import { readFileSync, writeFileSync } from 'node:fs';
import { dataIn, isFrame, messageIn } from './frames.mjs';
import { SOURCE } from './programs.mjs';

const PATH = `${SOURCE}docs/protocol.md`;
const BLOCK = /<!-- (frame|data): (.+?) -->\n```\w*\n([\s\S]*?)```/g;

const hasEmptyList = (text) => messageIn(text).body?.data !== undefined && JSON.stringify(dataIn(text)).includes('[]');

/**
 * Of several texts of one name the one to show. Of frames the first that leaves no list empty, else the first; of requests
 * to the service the last: the first list of users is asked for before any learner is there.
 */
function best(name, texts) {
  if (name.startsWith('/')) return texts[texts.length - 1];
  return (isFrame(name) && texts.find((text) => !hasEmptyList(text))) || texts[0];
}

const pretty = (frame) => JSON.stringify(dataIn(frame), null, 2);

/** The blocks: {kind, name, text}. */
export function readBlocks() {
  return [...readFileSync(PATH, 'utf8').matchAll(BLOCK)].map(([, kind, name, text]) => ({ kind, name, text: text.trimEnd() }));
}

/** Puts what was recorded into the blocks. */
export function updateBlocks(recorded) {
  const fill = (block, kind, name) => {
    if (!recorded.has(name)) throw new Error(`"${name}" was not recorded; there are:\n${[...recorded.keys()].join('\n')}`);
    const frame = best(name, recorded.get(name));
    const [language, text] = kind === 'data' ? ['json', pretty(frame)] : ['', frame.trimEnd()];
    return `<!-- ${kind}: ${name} -->\n\`\`\`${language}\n${text}\n\`\`\``;
  };
  writeFileSync(PATH, readFileSync(PATH, 'utf8').replace(BLOCK, fill));
}
