// A picture from the device, made small enough to travel on the event bus within a second or two.

const LONGEST_SIDE = 960;
const QUALITY = 0.75;

function scaled({ width, height }) {
  const factor = Math.min(1, LONGEST_SIDE / Math.max(width, height));
  return { width: Math.max(1, Math.round(width * factor)), height: Math.max(1, Math.round(height * factor)) };
}

async function decoded(file) {
  const image = new Image();
  const address = await new Promise((resolve, reject) => {
    const reader = new FileReader();
    reader.onload = () => resolve(reader.result);
    reader.onerror = () => reject(reader.error);
    reader.readAsDataURL(file);
  });
  image.src = address;
  await image.decode();
  return image;
}

/** {name, url} with the picture as a data URI; rejects when the file is no picture. */
export async function pictureFrom(file) {
  const image = await decoded(file);
  const { width, height } = scaled({ width: image.naturalWidth, height: image.naturalHeight });
  const canvas = Object.assign(document.createElement('canvas'), { width, height });
  const context = canvas.getContext('2d');
  // JPEG knows no transparency: without this it is black.
  context.fillStyle = '#fff';
  context.fillRect(0, 0, width, height);
  context.drawImage(image, 0, 0, width, height);
  return { name: file.name, url: canvas.toDataURL('image/jpeg', QUALITY) };
}
