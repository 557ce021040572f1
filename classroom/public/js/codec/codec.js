/** The "data" of messages: values to compressed text and back, in the order in which they are given. */
export class Codec {
  #worker = null;
  #waiting = new Map();
  #count = 0;

  encode(value) {
    return this.#ask('encode', value);
  }

  decode(data) {
    return this.#ask('decode', data);
  }

  #ask(job, input) {
    this.#worker ??= this.#start();
    const id = this.#count += 1;
    return new Promise((resolve, reject) => {
      this.#waiting.set(id, { resolve, reject });
      this.#worker.postMessage({ id, job, input });
    });
  }

  #start() {
    const worker = new Worker('/js/codec/worker.js');
    worker.onmessage = ({ data: { id, output, error } }) => {
      const { resolve, reject } = this.#waiting.get(id);
      this.#waiting.delete(id);
      if (error === undefined) resolve(output);
      else reject(new Error(error));
    };
    // One that could not be loaded, when the connection was lost, is loaded once more for the next message.
    worker.onerror = () => {
      this.#worker = null;
      const waiting = [...this.#waiting.values()];
      this.#waiting.clear();
      waiting.forEach(({ reject }) => reject(new Error('the codec cannot be loaded')));
    };
    return worker;
  }
}
