import net from 'node:net';

/** A wire between the pages and the classroom that can be cut, frozen (nobody is told) and mended: {url, cut(), freeze(), mend()}. */
export async function openWire(t, url) {
  const target = new URL(url);
  const pairs = new Set();
  let whole = true;
  let frozen = false;
  const server = net.createServer((near) => {
    near.on('error', () => {});
    if (!whole) {
      near.destroy();
      return;
    }
    if (frozen) {
      pairs.add([near]);
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
    for (const pair of pairs) pair.forEach((socket) => socket.destroy());
  };
  const freeze = () => {
    frozen = true;
    for (const pair of pairs) pair.forEach((socket) => socket.unpipe().pause());
  };
  // What was frozen is forgotten by whoever forwarded it.
  const mend = () => {
    cut();
    [whole, frozen] = [true, false];
  };
  t.after(() => {
    cut();
    server.close();
  });
  return { url: `http://127.0.0.1:${server.address().port}`, cut, freeze, mend };
}
