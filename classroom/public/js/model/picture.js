// Where a picture that a presenter names is to be had from: it comes as a data URI, as a path of the service or as
// an address, each of them plain or in CSS's url('...').

const DOWNLOAD_PATH = '/tavisto/resource/downloadResourceFile';

function unwrapped(reference) {
  const match = /^url\(\s*(["']?)(.*)\1\s*\)$/s.exec(reference.trim());
  return match ? match[2] : reference.trim();
}

/** The address to load, or null: pictures from anywhere else are not loaded. */
export function pictureAddress(reference, pageAddress) {
  const wanted = typeof reference === 'string' ? unwrapped(reference) : '';
  if (wanted === '') return null;
  if (/^data:image\//i.test(wanted)) return wanted;
  try {
    const { origin } = new URL(pageAddress);
    const address = new URL(wanted, pageAddress);
    // The presenter may know the service by another name than this device, by a loopback address for example.
    if (address.pathname === DOWNLOAD_PATH) return origin + address.pathname + address.search;
    return address.origin === origin ? address.href : null;
  } catch {
    return null;
  }
}

const listOf = (value) => (Array.isArray(value) ? value : []);

/** The pictures of a card: its background, then its image components. */
export function cardPictures(card) {
  const background = card?.styles?.backgroundImage;
  const images = listOf(card?.components).filter((one) => one?.type === 'image').map((one) => one.blob?.url);
  return [background, ...images].filter((one) => typeof one === 'string' && one !== '');
}
