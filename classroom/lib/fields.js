import { Refusal } from './envelope.js';
import { MAX_FIELD_LENGTH } from './limits.js';

/** The named members of a body, each a text that is not empty; `area` begins the key of the refusal. */
export function requireTexts(body, area, names, longest = MAX_FIELD_LENGTH) {
  return names.map((name) => {
    const value = body[name];
    if (typeof value !== 'string' || value === '' || value.length > longest) {
      throw new Refusal(400, `${area}.error.${name}`);
    }
    return value;
  });
}

export function hasTexts(body, names) {
  return names.every((name) => typeof body[name] === 'string' && body[name] !== '');
}

/** Hosts name themselves in what they open: logins, registrations and sessions. */
export function requireSourceSystem(body, area) {
  if (body.sourceSystem !== 'Lumora') throw new Refusal(400, `${area}.error.sourceSystem`);
}
