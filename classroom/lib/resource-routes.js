// Resources of a lesson: a presenter uploads them, devices download them.

import { Refusal, success } from './envelope.js';
import { parseMultipart } from './multipart.js';

const DOWNLOAD = '/tavisto/resource/downloadResourceFile';

// The service gives out the ids itself: "clientProvidedGUID" can only be false.
function upload({ classroom, request, body }) {
  const parts = parseMultipart(request.headers['content-type'], body);
  const file = parts.find(({ name }) => name === 'files');
  const value = (wanted) => parts.find(({ name }) => name === wanted)?.content.toString();
  if (!file?.filename) throw new Refusal(400, 'resource.error.files');
  if (!['true', 'false'].includes(value('isTemporary'))) throw new Refusal(400, 'resource.error.isTemporary');
  if (value('clientProvidedGUID') !== 'false') throw new Refusal(400, 'resource.error.clientProvidedGUID');
  const id = classroom.uploads.add(file.filename, file.content);
  return success({ id, path: `${DOWNLOAD}?resourceId=${id}` });
}

// The id is the secret: learners' devices have no login.
function download({ classroom, query, response }) {
  const { content, type } = classroom.uploads.get(query.get('resourceId') ?? '');
  response.writeHead(200, {
    'content-type': type,
    'content-length': content.length,
    'x-content-type-options': 'nosniff',
  });
  response.end(content);
}

export const resourceRoutes = [
  { path: '/tavisto/resource/uploadResourceFile', login: true, body: 'upload', handle: upload },
  { path: DOWNLOAD, method: 'GET', body: 'none', handle: download },
];
