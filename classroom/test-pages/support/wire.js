import net from 'node:net';

/** A wire between the pages and the classroom that can be cut and mended: {url, cut(), mend()}. */
export async function openWire(t, url) {
  const target = new URL(url);
  const pairs = new Set();
  let whole = true;
  const server = net.createServer((near) => {
    near.on('error', () => {});
    if (!whole) {
      near.destroy();
      return;
    }
    const far = net.connect(Number(target.port), target.hostname);
    far.on('error', () => near.destroy());
    near.pipe(far).pipe(near);
    const pair = [near, far];
    pairs.add(pair);
    near.on('close', () => {
      pairs.delete(pair);
      far.destroy();
    });
    far.on('close', () => near.destroy());
  });
  await new Promise((resolve) => { server.listen(0, '127.0.0.1', resolve); });
  const cut = () => {
    whole = false;
    for (const [near, far] of pairs) [near, far].forEach((socket) => socket.destroy());
  };
  t.after(() => {
    cut();
    server.close();
  });
  return { url: `http://127.0.0.1:${server.address().port}`, cut, mend: () => { whole = true; } };
}
