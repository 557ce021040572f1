// The frames of the event bus: their names, and what is in them.
import { decodeData } from '../../../classroom/lib/codec.js';

/** The event-bus message in a SockJS frame: outbound frames are arrays, inbound ones are "a" and an array. */
export function messageIn(frame) {
  const [text] = JSON.parse(frame.replace(/^a/, ''));
  return JSON.parse(text);
}

/** What a frame is called: its way, and its message's type or action. */
export function nameOf({ way, text }) {
  if (text.length === 1) return `${way} ${text}`;
  if (!/^a?\[/.test(text)) return `${way} ${text[0]}`;
  const { type, body } = messageIn(text);
  return `${way} ${body?.action ?? body?.type ?? type}`;
}

/** Whether a name is that of a frame that carries a message. */
export const isFrame = (name) => /^(out|in) \w\w+$/.test(name);

/** The decoded data of a frame's message. What is no JSON document, a bare string, comes back as it stands. */
export const dataIn = (frame) => decodeData(messageIn(frame).body.data);

/** What stays of a value when its texts and numbers are left out. */
export function shapeOf(value) {
  if (Array.isArray(value)) return value.length > 0 ? [shapeOf(value[0])] : [];
  if (value === null || typeof value !== 'object') return typeof value;
  return Object.fromEntries(Object.keys(value).sort().map((key) => [key, shapeOf(value[key])]));
}
