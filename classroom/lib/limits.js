// Every bound of the local classroom, in one place. Beyond a bound a request is refused, a frame is
// answered with an error or the oldest entry makes room: nothing grows for as long as the process runs.

const KIB = 1024;
const MIB = 1024 * KIB;

export const MAX_JSON_BODY = 1 * MIB;
export const MAX_UPLOAD_BODY = 32 * MIB;
// A body that is too large is still read (and thrown away) up to here, so that the sender gets to see
// the refusal; whoever sends more than this loses the connection.
export const MAX_DRAINED_BODY = 128 * MIB;

// What is held of bodies that are being received: of all who have logged in, and of everybody else together.
export const MAX_HELD_BODIES = 256 * MIB;
export const MAX_HELD_STRANGERS_BODIES = 16 * MIB;

export const MAX_FIELD_LENGTH = 1000;
// Of people and devices.
export const MAX_NAME_LENGTH = 200;

export const MAX_LOGINS = 10000;
export const LOGIN_IDLE_MS = 30 * 60 * 1000;
export const MAX_DEVICE_TOKENS = 1000;
export const MAX_REGISTRATIONS = 1000;
export const MAX_USERS_REGISTERED = 1000;

export const MAX_SESSIONS = 100;
export const MAX_USERS_PER_SESSION = 10000;
// Who has joined, and is not on the bus yet; a join that is not followed by that does not count for long.
export const MAX_EXPECTED_USERS = 1000;
export const EXPECTED_MS = 60000;

export const MAX_STORED_UPLOADS = 1000;
export const MAX_STORED_UPLOAD_BYTES = 256 * MIB;

// An image card of 8 MB arrives as 10.9 MB: base64 of a compressed block of base64, which shrinks in it to
// little more than the image again. There is room for an encoder that gains nothing (14.3 MB).
export const MAX_FRAME = 16 * MIB;
// A device's largest is a picture for a card, which the remote control's page makes small. Who is not known has only to register.
export const MAX_DEVICE_FRAME = 4 * MIB;
export const MAX_STRANGER_FRAME = 64 * KIB;
// What is held of frames that are being received, without the presenters'.
export const MAX_HELD_FRAMES = 64 * MIB;
// What one connection may send that is no presenter's: a device sends a few frames in a minute.
export const ALLOWED_FRAMES = { burst: 1000, perSecond: 50 };
export const ALLOWED_BYTES = { burst: 8 * MIB, perSecond: 512 * KIB };
export const MAX_ADDRESS_LENGTH = 200;
export const MAX_ADDRESSES_PER_CONNECTION = 100;
export const MAX_CONNECTIONS = 20000;
export const MAX_PENDING_REPLIES = 10000;
// What may wait for one slow device before it is cut off. A presenter that polls finds all that a full class
// has said since: each learner's coming and an answer.
export const MAX_QUEUED_MESSAGES = 2 * MAX_USERS_PER_SESSION;
export const MAX_QUEUED_BYTES = 64 * MIB;

export const MAX_WAITERS = 1000;
export const WAIT_MS = 25000;

// Learners: payloads kept decoded or encoded, and how many learners join at once.
export const MAX_CACHED_PAYLOADS = 256;
export const MAX_CACHED_CHARS = 64 * MIB;
export const MAX_BLOCK_TEXT = 256 * MIB;
export const JOINS_AT_ONCE = 50;
export const OPEN_MS = 30000;
export const REQUEST_MS = 60000;
