// Records the frames and requests of docs/protocol.md anew, from lessons on the local classroom, and puts them there:
// node tests/docs/record-frames.mjs build/dev/presenter/calyx-presenter
import { withPrograms } from './support/programs.mjs';
import { updateBlocks } from './support/protocol-document.mjs';
import { record } from './support/recording.mjs';

await withPrograms(async () => updateBlocks(await record(process.argv[2])));
