// The page of a gallery. data/index.js and data/N.js call it with their data: see the two functions at the end.
'use strict';

const vdstoGallery = (() => {
  const words = {
    en: { all: 'All photos', folders: 'Folders', tags: 'Tags', dates: 'Dates', undated: 'No date', photos: n => n + (n === 1 ? ' photo' : ' photos'), play: 'Slideshow', pause: 'Pause', menu: 'Folders, tags and dates', none: 'no thumbnail', close: 'Close', zoom: 'Zoom', prev: 'Previous', next: 'Next', failed: 'The picture is not there' },
    ko: { all: '모든 사진', folders: '폴더', tags: '태그', dates: '날짜', undated: '날짜 없음', photos: n => '사진 ' + n + '장', play: '슬라이드쇼', pause: '일시 정지', menu: '폴더, 태그, 날짜', none: '미리보기 없음', close: '닫기', zoom: '확대', prev: '이전', next: '다음', failed: '그림이 없습니다' },
  };
  const language = navigator.language.startsWith('ko') ? 'ko' : 'en';
  const say = words[language];
  const seconds = 4; // that the slideshow shows a photo
  const captionHeight = 50;
  const byId = id => document.getElementById(id);
  const view = byId('view'), grid = byId('grid');

  let index; // what data/index.js says
  let shown = []; // the numbers of the photos that the chosen place has
  let current = 0; // the one of them that the keyboard is at
  let layout = { columns: 1, cell: 200, row: 250 };
  const chunks = new Map(); // number: photos, or null while they are on their way
  const cells = new Map(); // place in `shown`: element

  // An element with attributes and children; texts are never markup.
  function make(tag, attributes, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    element.append(...children);
    return element;
  }

  // ---- Photos ----

  function photoAt(number) {
    const chunk = Math.floor(number / index.chunk);
    const photos = chunks.get(chunk);
    if (photos) return photos[number % index.chunk];
    if (photos === undefined) {
      chunks.set(chunk, null);
      document.head.append(make('script', { src: 'data/' + chunk + '.js' }));
    }
    return null;
  }

  const thumbnailOf = number => 'thumbs/' + Math.floor(number / index.chunk) + '/' + number + '.jpg';

  function asPhoto([name, title, description, when, camera, folder, tags, hasThumbnail, slide, cell]) {
    return { name, title, description, when, camera, folder, tags, hasThumbnail, slide, cell };
  }

  function pathOf(folder) {
    const names = [];
    for (; folder >= 0; folder = index.folders[folder][1]) names.unshift(index.folders[folder][0]);
    return names.join(' / ');
  }

  // ---- The grid, of which only what can be seen is there ----

  function measure() {
    const gap = parseFloat(getComputedStyle(grid).marginLeft) || 0;
    const width = view.clientWidth - 2 * gap;
    const columns = Math.max(2, Math.floor((width + gap) / (190 + gap)));
    const cell = Math.floor((width - (columns - 1) * gap) / columns);
    layout = { columns, cell, gap, row: cell + captionHeight + gap };
    grid.style.height = Math.ceil(shown.length / columns) * layout.row + 'px';
    clear();
  }

  function clear() {
    for (const cell of cells.values()) cell.remove();
    cells.clear();
  }

  function drawSoon() {
    if (!drawSoon.asked) drawSoon.asked = requestAnimationFrame(draw);
  }

  function draw() {
    drawSoon.asked = 0;
    if (!index) return;
    const first = Math.max(0, Math.floor(view.scrollTop / layout.row) - 2) * layout.columns;
    const rows = Math.ceil(view.clientHeight / layout.row) + 4;
    const end = Math.min(shown.length, first + rows * layout.columns);
    for (const [place, cell] of cells) {
      if ((place < first || place >= end) && !cell.contains(document.activeElement)) cell.remove(), cells.delete(place);
    }
    for (let place = first; place < end; ++place) {
      if (!cells.has(place)) addCell(place);
    }
  }

  function addCell(place) {
    const photo = photoAt(shown[place]);
    const link = make('a', { href: thumbnailOf(shown[place]), tabindex: place === current ? 0 : -1, 'data-place': place }, make('span', { class: 'mat' }));
    const cell = make('div', { class: 'photo', role: 'listitem', 'aria-posinset': place + 1, 'aria-setsize': shown.length }, link);
    const { columns, cell: side, gap, row } = layout;
    cell.style.width = side + 'px';
    cell.style.height = side + captionHeight + 'px';
    cell.style.transform = `translate(${(place % columns) * (side + gap)}px, ${Math.floor(place / columns) * row}px)`;
    if (photo) fill(link, photo, shown[place]);
    cells.set(place, cell);
    grid.append(cell);
  }

  // The data says where in the cell the picture stands, in thousandths of its side.
  function fill(link, photo, number) {
    if (!photo.hasThumbnail) link.href = '#';
    const mat = link.firstChild;
    if (photo.hasThumbnail) {
      const image = make('img', { alt: '', class: 'waiting', decoding: 'async' });
      const [left, top, width, height] = photo.cell;
      Object.assign(image.style, { left: left / 10 + '%', top: top / 10 + '%', width: width / 10 + '%', height: height / 10 + '%' });
      image.onload = () => image.classList.remove('waiting');
      image.src = thumbnailOf(number);
      mat.append(image);
    } else {
      mat.append(make('span', { class: 'none' }, say.none));
    }
    link.append(make('span', { class: 'name' }, photo.title || photo.name), make('span', { class: 'when' }, photo.when || say.undated));
  }

  function focusOn(place) {
    const old = cells.get(current);
    if (old) old.firstChild.tabIndex = -1;
    current = Math.min(Math.max(place, 0), shown.length - 1);
    const top = Math.floor(current / layout.columns) * layout.row;
    if (top < view.scrollTop) view.scrollTop = top;
    if (top + layout.row > view.scrollTop + view.clientHeight) view.scrollTop = top + layout.row - view.clientHeight;
    draw();
    const link = cells.get(current).firstChild;
    link.tabIndex = 0;
    link.focus({ preventScroll: true });
  }

  function moveByKey(event) {
    const page = layout.columns * Math.max(1, Math.floor(view.clientHeight / layout.row));
    const steps = { ArrowRight: 1, ArrowLeft: -1, ArrowDown: layout.columns, ArrowUp: -layout.columns, PageDown: page, PageUp: -page, Home: -shown.length, End: shown.length };
    const link = event.target.closest('.photo a');
    if (lightbox.pswp || !link || !(event.key in steps) || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    focusOn(Number(link.dataset.place) + steps[event.key]);
  }

  // ---- Slides ----

  const lightbox = new PhotoSwipeLightbox({
    pswpModule: PhotoSwipe, bgOpacity: 1, loop: false, showHideAnimationType: 'fade', preload: [1, 2],
    closeTitle: say.close, zoomTitle: say.zoom, arrowPrevTitle: say.prev, arrowNextTitle: say.next, errorMsg: say.failed,
    paddingFn: size => ({ top: 56, bottom: size.y > 500 ? 96 : 56, left: 0, right: 0 }),
  });
  lightbox.addFilter('numItems', () => shown.length);
  lightbox.addFilter('itemData', (data, place) => {
    const photo = photoAt(shown[place]);
    if (!photo || !photo.hasThumbnail) return { type: 'nothing', text: photo ? say.none : '' };
    return { src: thumbnailOf(shown[place]), width: photo.slide[0], height: photo.slide[1], alt: photo.title || photo.name };
  });
  lightbox.on('contentLoad', event => {
    if (event.content.type !== 'nothing') return;
    event.preventDefault();
    event.content.element = make('div', { class: 'nothing' }, event.content.data.text);
    event.content.onLoaded();
  });

  let timer = 0, playsWhenOpen = false;
  function play(on) {
    clearInterval(timer);
    timer = on ? setInterval(() => lightbox.pswp.goTo((lightbox.pswp.currIndex + 1) % shown.length), seconds * 1000) : 0;
    const button = document.querySelector('.pswp__button--play');
    if (!button) return;
    button.textContent = on ? '❚❚' : '▶';
    button.title = on ? say.pause : say.play;
    button.setAttribute('aria-label', button.title);
    button.setAttribute('aria-pressed', on);
  }

  function showCaption(element) {
    const photo = photoAt(shown[lightbox.pswp.currIndex]);
    element.replaceChildren();
    if (!photo) return;
    const tags = photo.tags.map(tag => '#' + index.tags[tag][0]).join(' ');
    const facts = [photo.title ? photo.name : '', photo.when, pathOf(photo.folder), photo.camera].filter(Boolean).join(' · ');
    element.append(make('p', {}, photo.title || photo.name));
    for (const text of [photo.description, facts, tags]) {
      if (text) element.append(make('p', { class: text === photo.description ? '' : 'quiet' }, text));
    }
  }

  lightbox.on('uiRegister', () => {
    lightbox.pswp.ui.registerElement({ name: 'play', order: 8, isButton: true, html: '▶', onInit: () => setTimeout(() => play(playsWhenOpen)), onClick: () => play(!timer) });
    lightbox.pswp.ui.registerElement({ name: 'caption', className: 'caption', appendTo: 'root', onInit: element => { element.setAttribute('aria-live', 'polite'); lightbox.pswp.on('change', () => showCaption(element)); } });
  });
  lightbox.on('keydown', event => {
    const pressed = event.originalEvent;
    if (pressed.key === ' ' && !pressed.target.closest('button')) pressed.preventDefault(), play(!timer);
  });
  lightbox.on('close', () => { current = lightbox.pswp.currIndex; });
  lightbox.on('destroy', () => { play(false); focusOn(current); });
  lightbox.init();

  function open(place, playing) {
    if (!shown.length) return;
    playsWhenOpen = playing;
    lightbox.loadAndOpen(place);
  }

  // ---- Places: folders, tags, months ----

  // Every place is an address behind '#'; what it shows is found when it is asked for.
  const places = new Map();

  function addPlace(key, name, numbers) {
    places.set(key, numbers);
    return make('a', { href: '#' + key }, make('span', {}, name), make('span', { class: 'number' }, String(numbers.length)));
  }

  const byName = (a, b) => a.name.localeCompare(b.name, language, { numeric: true });

  function folderTree() {
    const nodes = index.folders.map(([name], i) => ({ name, key: 'folder-' + i, numbers: [], folders: [] }));
    index.folderOf.forEach((folder, number) => {
      for (; folder >= 0; folder = index.folders[folder][1]) nodes[folder].numbers.push(number);
    });
    nodes.forEach((node, i) => { const parent = index.folders[i][1]; if (parent >= 0) nodes[parent].folders.push(node); });
    return nodes.filter((node, i) => index.folders[i][1] < 0);
  }

  function monthTree() {
    const years = [];
    let number = 0;
    for (const [month, count] of index.months) {
      const numbers = Array.from({ length: count }, () => number++);
      const year = month.slice(0, 4);
      if (!years.length || years.at(-1).name !== (year || say.undated)) years.push({ name: year || say.undated, key: 'date-' + (year || 'none'), numbers: [], folders: [] });
      for (const photo of numbers) years.at(-1).numbers.push(photo);
      if (month) years.at(-1).folders.push({ name: month, key: 'date-' + month, numbers, folders: [] });
    }
    return years;
  }

  function listOf(nodes) {
    return make('ul', {}, ...nodes.map(node => make('li', {}, addPlace(node.key, node.name, node.numbers), ...(node.folders.length ? [listOf(node.folders)] : []))));
  }

  function drawPlaces() {
    const all = { name: say.all, key: 'all', numbers: index.folderOf.map((_, number) => number), folders: [] };
    const folders = folderTree();
    (function sort(nodes) { nodes.sort(byName).forEach(node => sort(node.folders)); })(folders);
    const tags = index.tags.map(([name, numbers], i) => ({ name, key: 'tag-' + i, numbers, folders: [] })).sort(byName);
    byId('places').append(listOf([all]));
    for (const [name, nodes] of [[say.folders, folders], [say.tags, tags], [say.dates, monthTree()]]) {
      if (nodes.length) byId('places').append(make('h2', {}, name), listOf(nodes));
    }
  }

  function go() {
    const wanted = location.hash.slice(1);
    const key = places.has(wanted) ? wanted : 'all';
    shown = places.get(key);
    current = 0;
    view.scrollTop = 0;
    byId('count').textContent = say.photos(shown.length);
    for (const link of byId('places').querySelectorAll('a')) {
      if (link.hash === '#' + key) link.setAttribute('aria-current', 'page');
      else link.removeAttribute('aria-current');
    }
    showMenu(false);
    measure();
    draw();
  }

  function showMenu(on) {
    document.body.classList.toggle('menu', on);
    byId('menu').setAttribute('aria-expanded', on);
  }

  function start() {
    document.documentElement.lang = language;
    for (const id of ['menu', 'play']) byId(id).title = say[id], byId(id).setAttribute('aria-label', say[id]);
    byId('places').setAttribute('aria-label', say.menu);
    byId('menu').onclick = () => showMenu(!document.body.classList.contains('menu'));
    byId('play').onclick = () => open(current, true);
    grid.addEventListener('click', event => {
      const link = event.target.closest('.photo a');
      if (!link || event.ctrlKey || event.metaKey || event.shiftKey) return;
      event.preventDefault();
      open(Number(link.dataset.place), false);
    });
    grid.addEventListener('keydown', moveByKey);
    view.addEventListener('scroll', drawSoon, { passive: true });
    new ResizeObserver(() => { measure(); draw(); }).observe(view);
    addEventListener('hashchange', go);
    addEventListener('keydown', event => { if (event.key === 'Escape') showMenu(false); });
  }

  return {
    // { title, chunk: photos in a piece, folders: [[name, parent or -1]], folderOf: [folder of each photo],
    //   tags: [[name, [photos]]], months: [['2024-05' or '', how many]] in the order of the photos }
    index(data) {
      index = data;
      drawPlaces();
      start();
      go();
    },
    // { number, photos: [[name, title, description, when, camera, folder, [tags], has a thumbnail,
    //   [width, height] in the slideshow, [left, top, width, height] in a cell of 1000 x 1000]] }
    chunk(data) {
      chunks.set(data.number, data.photos.map(asPhoto));
      for (const [place, cell] of [...cells]) {
        const link = cell.firstChild;
        const photo = link.childElementCount === 1 && photoAt(shown[place]);
        if (photo) fill(link, photo, shown[place]);
      }
      if (lightbox.pswp) {
        const { currIndex } = lightbox.pswp;
        for (const place of [currIndex - 1, currIndex, currIndex + 1]) lightbox.pswp.refreshSlideContent(place);
        lightbox.pswp.dispatch('change');
      }
    },
  };
})();
