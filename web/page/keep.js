// What can be taken away: text into the clipboard, files, drawings.
import {make} from './board.js';

const PAINT = ['fill', 'stroke', 'stroke-width', 'stroke-dasharray', 'stroke-linecap', 'stroke-linejoin', 'paint-order',
               'font-size', 'font-weight', 'text-anchor', 'opacity'];

/** @param {string} text @param {string} name @param {string} type */
export function saveFile(text, name, type) {
  const address = URL.createObjectURL(new Blob([text], {type}));
  const link = make(document.body, 'a', '', {href: address, download: name, hidden: ''});
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(address), 10000);
}

/** A drawing of the page as a file that needs nothing of the page's style. @param {SVGElement} svg */
export function drawingText(svg) {
  const copy = /** @type {SVGElement} */ (svg.cloneNode(true));
  const originals = [svg, ...svg.querySelectorAll('*')], copies = [copy, ...copy.querySelectorAll('*')];
  originals.forEach((original, i) => {
    const style = getComputedStyle(original);
    for (const name of PAINT) copies[i].setAttribute(name, style.getPropertyValue(name));
    copies[i].removeAttribute('class');
  });
  const [, , width, height] = svg.getAttribute('viewBox').split(' ');
  for (const [name, value] of Object.entries({xmlns: 'http://www.w3.org/2000/svg', width, height, 'font-family': 'sans-serif'}))
    copy.setAttribute(name, value);
  const paper = document.createElementNS('http://www.w3.org/2000/svg', 'rect');
  const [x, y] = svg.getAttribute('viewBox').split(' ');
  const colour = getComputedStyle(document.body).backgroundColor;
  for (const [name, value] of Object.entries({x, y, width, height, fill: colour})) paper.setAttribute(name, value);
  copy.prepend(paper);
  return new XMLSerializer().serializeToString(copy);
}

/**
 * Offers what there is to take away: entries with a text and what is done; the first words of each are what it is.
 * @param {{title: string, text?: () => string, file?: {name: string, type: string, text: () => string}}[]} entries
 * @param {(text: string) => void} announce
 */
export function offer(entries, announce) {
  const dialog = make(document.body, 'dialog', '', {class: 'keep', 'aria-labelledby': 'keep-title'});
  make(dialog, 'h2', 'Copy or save', {id: 'keep-title'});
  const list = make(dialog, 'ul');
  const field = make(dialog, 'textarea', '', {rows: 5, readonly: '', 'aria-label': 'Text to copy', hidden: ''});
  const told = make(dialog, 'p', '', {class: 'legend', role: 'status'});
  for (const {title, text, file} of entries) {
    const row = make(list, 'li', '', {class: 'row'});
    make(row, 'span', title);
    if (text) {
      const copy = make(row, 'button', 'Copy', {type: 'button', 'aria-label': `Copy ${title}`});
      copy.addEventListener('click', async () => {
        const copied = await navigator.clipboard?.writeText(text()).then(() => true, () => false);
        // Where the clipboard is closed to the page, the text is there to be copied by hand.
        field.hidden = copied;
        field.value = text();
        if (!copied) field.select();
        told.textContent = copied ? `${title} copied.` : 'The browser doesn’t let the page copy: copy the text above.';
        announce(told.textContent);
      });
    }
    if (file) {
      const save = make(row, 'button', 'Save', {type: 'button', 'aria-label': `Save ${title}`});
      save.addEventListener('click', () => {
        saveFile(file.text(), file.name, file.type);
        told.textContent = `${file.name} saved.`;
      });
    }
  }
  const row = make(dialog, 'div', '', {class: 'row'});
  const close = make(row, 'button', 'Close', {type: 'button', class: 'apart'});
  const end = () => dialog.remove();
  close.addEventListener('click', end);
  dialog.addEventListener('cancel', end);
  dialog.showModal();
}
