import { t } from '../words/words.js';
import { el } from './dom.js';
import { pictureAddress } from '../model/picture.js';

/** A figure of a picture that somebody else has named, or the sentence that it cannot be shown. */
export function picture(reference, description) {
  const address = pictureAddress(reference, location.href);
  const figure = el('figure', { class: 'picture' });
  const giveUp = () => figure.replaceChildren(el('p', { class: 'picture-missing' }, t('The picture cannot be shown here.')));
  if (address) figure.append(el('img', { src: address, alt: description, onerror: giveUp }));
  else giveUp();
  return figure;
}
