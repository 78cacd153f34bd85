// What the gallery's page does when it is used: filters, before and after, copying, the contents.
'use strict';
(() => {
  const all = (selector, from = document) => [...from.querySelectorAll(selector)];
  const one = (selector, from = document) => from.querySelector(selector);

  // --- Filters: a family, a format, words. An entry stays while it has something to show.
  const chosen = {family: '', format: '', words: ''};
  const cards = all('article[data-family]');

  function shows(card) {
    if (chosen.family && card.dataset.family !== chosen.family) return false;
    if (chosen.format && !one(`figure[data-format="${chosen.format}"]`, card)) return false;
    const text = card.textContent.toLowerCase();
    return chosen.words.toLowerCase().split(/\s+/).every(word => text.includes(word));
  }

  function filter() {
    let shown = 0;
    for (const card of cards) {
      card.hidden = !shows(card);
      shown += card.hidden ? 0 : 1;
      one(`nav a[href="#${card.id}"]`).parentElement.hidden = card.hidden;
    }
    for (const figure of all('article figure[data-format]')) {
      figure.hidden = chosen.format !== '' && figure.dataset.format !== chosen.format;
    }
    for (const section of all('main > section')) {
      const own = all('article[data-family]', section);
      section.hidden = own.length ? own.every(card => card.hidden) : shown !== cards.length;
      const heading = one(`nav a[href="#${section.id}"]`).parentElement;
      heading.hidden = section.hidden;
      if (heading.nextElementSibling?.tagName === 'UL') {
        heading.nextElementSibling.hidden = section.hidden;
      }
    }
    for (const chip of all('#tools button[data-filter]')) {
      chip.setAttribute('aria-pressed', chosen[chip.dataset.filter] === chip.value);
    }
    one('#shown').textContent = `${shown} of ${cards.length} entries`;
    one('#none').hidden = shown !== 0;
  }

  for (const chip of all('#tools button[data-filter]')) {
    chip.addEventListener('click', () => {
      chosen[chip.dataset.filter] = chip.value;
      filter();
    });
  }
  one('#words').addEventListener('input', event => {
    chosen.words = event.target.value.trim();
    filter();
  });
  // A link to an entry that is filtered away brings everything back.
  window.addEventListener('hashchange', () => {
    const target = document.getElementById(decodeURIComponent(location.hash.slice(1)));
    if (!target || !target.closest('[hidden]')) return;
    chosen.family = chosen.format = chosen.words = one('#words').value = '';
    filter();
    target.scrollIntoView();
  });

  // --- Before and after: a result shows what it was made of while the pointer is on it, or from one
  // tap or key to the next.
  const sizeOf = img => `${img.getAttribute('width')} x ${img.getAttribute('height')}`;
  for (const card of cards) {
    const before = one('.inputs img', card);
    if (!before) continue;
    for (const after of all('figure:not(.inputs figure) img', card)) {
      if (sizeOf(after) !== sizeOf(before)) continue;
      const figure = after.closest('figure');
      const source = after.src;
      const show = isBefore => {
        after.src = isBefore ? before.src : source;
        figure.classList.toggle('before', isBefore);
      };
      figure.classList.add('compares');
      after.tabIndex = 0;
      after.title = 'Before: hover, tap or press Enter';
      const toggle = () => show(!figure.classList.contains('before'));
      after.addEventListener('pointerenter', event => event.pointerType === 'mouse' && show(true));
      after.addEventListener('pointerleave', event => event.pointerType === 'mouse' && show(false));
      after.addEventListener('click', event => event.pointerType !== 'mouse' && toggle());
      after.addEventListener('keydown', event => event.key === 'Enter' && toggle());
    }
  }

  // --- The code of an entry to the clipboard.
  async function copy(text) {
    try {
      await navigator.clipboard.writeText(text);
    } catch {  // not allowed for this page: by way of a selection
      const area = document.body.appendChild(document.createElement('textarea'));
      area.value = text;
      area.select();
      const copied = document.execCommand('copy');
      area.remove();
      return copied;
    }
    return true;
  }
  for (const block of all('article pre')) {
    const button = document.createElement('button');
    button.type = 'button';
    button.className = 'copy';
    button.textContent = 'Copy';
    button.addEventListener('click', async () => {
      button.textContent = await copy(one('code', block).textContent) ? 'Copied' : 'Not copied';
      setTimeout(() => { button.textContent = 'Copy'; }, 1500);
    });
    block.prepend(button);
  }

  // --- The contents on a small screen.
  const opener = one('#contents');
  const open = isOpen => {
    document.body.classList.toggle('open', isOpen);
    opener.setAttribute('aria-expanded', isOpen);
  };
  opener.addEventListener('click', () => open(!document.body.classList.contains('open')));
  for (const link of all('nav a')) link.addEventListener('click', () => open(false));

  one('#tools').hidden = false;
  filter();
})();
