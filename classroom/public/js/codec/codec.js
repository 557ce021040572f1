/** The "data" of messages: values to compressed text and back, in the order in which they are given. */
export class Codec {
  #worker = new Worker('/js/codec/worker.js');
  #waiting = new Map();
  #count = 0;

  constructor() {
    this.#worker.onmessage = ({ data: { id, output, error } }) => {
      const { resolve, reject } = this.#waiting.get(id);
      this.#waiting.delete(id);
      if (error === undefined) resolve(output);
      else reject(new Error(error));
    };
  }

  encode(value) {
    return this.#ask('encode', value);
  }

  decode(data) {
    return this.#ask('decode', data);
  }

  #ask(job, input) {
    const id = this.#count += 1;
    return new Promise((resolve, reject) => {
      this.#waiting.set(id, { resolve, reject });
      this.#worker.postMessage({ id, job, input });
    });
  }
}
