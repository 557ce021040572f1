// A picture of 2 by 1 pixels as a PNG, and where it can come from.

export const PNG = Buffer.from(
  'iVBORw0KGgoAAAANSUhEUgAAAAIAAAABCAIAAAB7QOjdAAAAD0lEQVR4nGNourxFJisYAAt9AuOFuO29AAAAAElFTkSuQmCC', 'base64');

export const asDataUri = (bytes) => `data:image/png;base64,${bytes.toString('base64')}`;

/** Uploads a picture as a presenter does; resolves with its path at the service. */
export async function upload(host, bytes) {
  const part = (name, value) => Buffer.from(`--b\r\nContent-Disposition: form-data; name=${name}\r\n\r\n${value}\r\n`);
  const body = Buffer.concat([
    Buffer.from('--b\r\nContent-Disposition: form-data; name=files; filename="p.png"\r\n\r\n'), bytes, Buffer.from('\r\n'),
    part('isTemporary', 'true'), part('clientProvidedGUID', 'false'), Buffer.from('--b--\r\n'),
  ]);
  const headers = { 'content-type': 'multipart/form-data; boundary=b' };
  const reply = await host.send('POST', '/tavisto/resource/uploadResourceFile', body, headers);
  return reply.value.data.path;
}

export const card = (url) => ({ components: [{ type: 'image', blob: { url } }], styles: { backgroundColor: '', backgroundImage: '' } });
