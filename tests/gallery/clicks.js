// Uses the gallery's page as a visitor does, and leaves a line for each thing tried in #report.
'use strict';
(async () => {
  const lines = [];
  const all = selector => [...document.querySelectorAll(selector)];
  const one = selector => document.querySelector(selector);
  const seen = element => element.getClientRects().length !== 0;
  const cards = () => all('article[data-family]').filter(seen);
  const report = (ok, what) => lines.push(`${ok ? 'PASS' : 'FAIL'} gallery: ${what}`);
  const chip = (filter, value) => one(`#tools button[data-filter=${filter}][value="${value}"]`);
  const total = all('article[data-family]').length;
  const narrow = innerWidth < 600;
  const screen = narrow ? 'phone' : 'desktop';

  try {
    report(total > 100 && cards().length === total, `${screen}: ${total} entries are shown`);
    report(document.documentElement.scrollWidth <= innerWidth, `${screen}: nothing is wider than it`);
    report(all('img').every(img => img.src.startsWith('data:')) && !one('link, script[src]'),
           `${screen}: nothing comes from elsewhere`);
    report(all('img').every(img => img.complete && img.naturalWidth > 0),
           `${screen}: all ${all('img').length} pictures can be decoded`);

    const links = all('nav a').map(link => link.getAttribute('href'));
    const ids = all('article[data-family], main > section').map(element => '#' + element.id);
    report(ids.every(id => links.includes(id)) && new Set(ids).size === ids.length,
           `${screen}: the contents list everything once`);
    report(links.every(link => document.getElementById(link.slice(1))),
           `${screen}: every link of the contents leads somewhere`);
    const opener = one('#contents'), last = all('nav li a').pop();
    if (narrow) {
      report(seen(opener) && !seen(last), 'phone: the contents are closed at first');
      opener.click();
      report(seen(last) && opener.getAttribute('aria-expanded') === 'true',
             'phone: a tap opens the contents');
    } else {
      report(!seen(opener) && seen(last), 'desktop: the contents are open');
    }
    document.documentElement.style.scrollBehavior = 'auto';
    last.click();
    await new Promise(resolve => setTimeout(resolve, 300));
    const top = one(last.getAttribute('href')).getBoundingClientRect().top;
    report(top >= -1 && top < innerHeight, `${screen}: a link of the contents scrolls to its entry`);
    report(!narrow || !seen(last), `${screen}: the contents are out of the way afterwards`);

    for (const family of all('#tools button[data-filter=family]')) {
      family.click();
      const shown = cards();
      const right = family.value === '' ? shown.length === total :
          shown.length > 0 && shown.length < total &&
              shown.every(card => card.dataset.family === family.value) &&
              all('main > section').filter(seen).length === 1;
      report(right && family.getAttribute('aria-pressed') === 'true',
             `${screen}: family ${family.textContent}: ${shown.length} entries`);
    }
    chip('family', '').click();
    for (const format of all('#tools button[data-filter=format]')) {
      format.click();
      const figures = all('article figure[data-format]').filter(seen);
      const right = format.value === '' ? cards().length === total :
          figures.length > 0 && figures.every(figure => figure.dataset.format === format.value) &&
              cards().every(card => card.querySelector(`figure[data-format="${format.value}"]`));
      report(right, `${screen}: format ${format.textContent}: ${figures.length} results`);
    }
    chip('family', '8-bit-mixing').click();
    chip('format', '24').click();
    report(cards().length === 0 && seen(one('#none')), `${screen}: no 8-bit mixing at 24 bits`);
    chip('format', '').click();
    chip('family', '').click();
    report(cards().length === total && !seen(one('#none')), `${screen}: all are back`);

    const words = one('#words');
    words.value = 'flipx';
    words.dispatchEvent(new Event('input'));
    report(cards().length > 0 && cards().length < 10 && cards().some(card => card.id === 'flipx'),
           `${screen}: FlipX is found among ${cards().length}`);
    location.hash = '#line';
    await new Promise(resolve => setTimeout(resolve, 300));
    report(cards().length === total && words.value === '',
           `${screen}: a link to a hidden entry ends the search`);

    const figure = one('#drawbitmap-keyed-sprite .compares');
    const picture = figure.querySelector('img'), after = picture.src;
    const before = figure.closest('article').querySelector('.inputs img').src;
    const pointer = (type, kind) =>
        picture.dispatchEvent(new PointerEvent(type, {pointerType: kind, bubbles: true}));
    report(all('.compares').length > 300, `${screen}: ${all('.compares').length} results compare`);
    pointer('pointerenter', 'mouse');
    report(before !== after && picture.src === before && figure.classList.contains('before'),
           `${screen}: the pointer on a result shows what was before`);
    pointer('pointerleave', 'mouse');
    report(picture.src === after && !figure.classList.contains('before'),
           `${screen}: and the result again when it leaves`);
    pointer('click', 'touch');
    const tapped = picture.src;
    pointer('click', 'touch');
    report(tapped === before && picture.src === after, `${screen}: taps do the same`);
    picture.focus();
    picture.dispatchEvent(new KeyboardEvent('keydown', {key: 'Enter', bubbles: true}));
    report(document.activeElement === picture && picture.src === before, `${screen}: a key, too`);

    const block = one('article pre'), button = block.querySelector('.copy');
    let copied = '';
    Object.defineProperty(navigator, 'clipboard', {
      configurable: true,
      value: {writeText: async text => { copied = text; }},
    });
    button.click();
    await new Promise(resolve => setTimeout(resolve, 100));
    report(copied === block.querySelector('code').textContent && copied.length > 20 &&
               button.textContent === 'Copied',
           `${screen}: the code of an entry is copied`);
    Object.defineProperty(navigator, 'clipboard', {
      configurable: true,
      value: {writeText: async () => { throw new Error('not allowed'); }},
    });
    let selection = '';
    // The browser's own needs a real finger.
    document.execCommand = command => {
      selection = command === 'copy' ? getSelection().toString() || document.activeElement.value : '';
      return true;
    };
    button.click();
    await new Promise(resolve => setTimeout(resolve, 100));
    report(selection === copied && !one('textarea'),
           `${screen}: by way of a selection where the clipboard is closed`);
    report(all('article pre').every(pre => pre.querySelector('.copy') && pre.querySelector('code')
               .textContent.trim() !== ''), `${screen}: every entry has code`);
  } catch (error) {
    report(false, `${screen}: stopped: ${error}`);
  }
  const result = document.createElement('pre');
  result.id = 'report';
  result.textContent = lines.join('\n');
  document.body.replaceChildren(result);
})();
