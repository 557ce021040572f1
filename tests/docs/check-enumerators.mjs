// Fails on an enumerator without a comment. Argument: the folder with Doxygen's XML.
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';

const EMPTY = /<briefdescription>\s*<\/briefdescription>\s*<detaileddescription>\s*<\/detaileddescription>/;

const folder = process.argv[2];
let seen = 0;
const bare = [];
for (const file of readdirSync(folder).filter((name) => /^(class|namespace|struct)/.test(name))) {
  const xml = readFileSync(join(folder, file), 'utf8');
  for (const [enumeration] of xml.matchAll(/<memberdef kind="enum"[\s\S]*?<\/memberdef>/g)) {
    if (enumeration.includes('prot="private"')) continue;
    for (const [element, name] of enumeration.matchAll(/<enumvalue [\s\S]*?<name>(.*?)<\/name>[\s\S]*?<\/enumvalue>/g)) {
      seen += 1;
      if (EMPTY.test(element)) bare.push(`${file}: ${name}`);
    }
  }
}
if (bare.length > 0) throw new Error(`enumerators without a comment:\n${bare.join('\n')}`);
if (seen === 0) throw new Error(`no enumerator in ${folder}: the reference is not the library's`);
