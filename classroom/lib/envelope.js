// The envelope in which every reply of the service travels.

/** A request that the service refuses: an HTTP status and the key of the reason. */
export class Refusal extends Error {
  constructor(status, key) {
    super(key);
    this.status = status;
    this.key = key;
  }
}

// Two traps lie in the order and the presence of the keys. "data" comes last, as clients cut a
// registration text out of the raw reply from "data": to the closing brace. "infoMsgs" and "registration"
// are there only when they say something: clients take an empty "infoMsgs" list for an answer.
export function success(data = {}, { infoMsgKeys = [], infoMsgs, registration } = {}) {
  return { success: true, errorMsgKeys: [], infoMsgKeys, infoMsgs, registration, data };
}

export function failure(key) {
  return { success: false, errorMsgKeys: [key], infoMsgKeys: [], data: {} };
}
