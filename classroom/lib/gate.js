// Whom the classroom answers: who asks for it by a name of its own, and no page of another site. A name that somebody has made to
// mean this machine would else let that site's pages in.

import { isIP } from 'node:net';
import { hostname } from 'node:os';

/** The names by which a classroom may be asked for, beside any address: that of the machine, and those given. */
export function ownNames(given = []) {
  const machine = hostname();
  return new Set(['localhost', machine, `${machine}.local`, ...given].map((name) => name.toLowerCase()));
}

function nameIn(authority) {
  const [, name = ''] = /^(\[[^\]]*\]|[^:]*)(?::\d*)?$/.exec(authority) ?? [];
  return name.replace(/^\[|\]$/g, '').toLowerCase();
}

// No port where it is the usual one: pages name it neither way.
const withoutDefaultPort = (authority) => authority.toLowerCase().replace(/:(80|443)$/, '');

function isOwnOrigin(origin, authority = '') {
  const [, from] = /^https?:\/\/([^/]+)$/.exec(origin) ?? [];
  return from !== undefined && withoutDefaultPort(from) === withoutDefaultPort(authority);
}

/** The key of the reason for which a request is refused before it is looked at, or undefined. */
export function refusalOf({ headers: { host, origin } }, names) {
  // Browsers always say whom they ask: what has no "Host" is none.
  if (host !== undefined && !isIP(nameIn(host)) && !names.has(nameIn(host))) return 'request.error.host';
  if (origin !== undefined && !isOwnOrigin(origin, host)) return 'request.error.origin';
  return undefined;
}
