import { randomUUID } from 'node:crypto';
import { extname } from 'node:path';
import { Refusal } from './envelope.js';
import { MAX_STORED_UPLOADS, MAX_STORED_UPLOAD_BYTES } from './limits.js';

const TYPES = {
  '.gif': 'image/gif',
  '.jpeg': 'image/jpeg',
  '.jpg': 'image/jpeg',
  '.pdf': 'application/pdf',
  '.png': 'image/png',
  '.webp': 'image/webp',
};

/** The uploaded resources, in memory; the oldest make room for new ones. */
export class Uploads {
  #files = new Map();
  #bytes = 0;

  add(fileName, content) {
    const id = randomUUID();
    this.#files.set(id, { content, type: TYPES[extname(fileName).toLowerCase()] ?? 'application/octet-stream' });
    this.#bytes += content.length;
    while (this.#files.size > MAX_STORED_UPLOADS || this.#bytes > MAX_STORED_UPLOAD_BYTES) this.#dropOldest();
    return id;
  }

  #dropOldest() {
    const [id, { content }] = this.#files.entries().next().value;
    this.#files.delete(id);
    this.#bytes -= content.length;
  }

  get(id) {
    const file = this.#files.get(id);
    if (!file) throw new Refusal(404, 'resource.error.unknown');
    return file;
  }
}
