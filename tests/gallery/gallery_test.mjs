// Makes photos and a gallery of them and looks at it with a browser, from the file system.
// Usage: node gallery_test.mjs VDSTO FOLDER [SCREENSHOTS]
// FOLDER is emptied; the driver is in FOLDER/../driver, see scripts/test-gallery.sh. Exit code 77: skipped.
import assert from 'node:assert/strict';
import { execFileSync, spawnSync } from 'node:child_process';
import { existsSync, mkdirSync, readdirSync, rmSync, utimesSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';
import { landscape } from './pictures.mjs';

const [vdsto, work, screenshots] = process.argv.slice(2);
const browserPath = process.env.CHROMIUM || '/usr/bin/chromium';
const driver = resolve(work, '..', 'driver', 'node_modules', 'playwright-core');
for (const needed of [browserPath, driver]) {
  if (existsSync(needed)) continue;
  console.log(`Skipped: ${needed} is not there; scripts/test-gallery.sh installs what this test needs.`);
  process.exit(77);
}
const { chromium } = createRequire(import.meta.url)(driver);
const photos = join(work, '사진'), gallery = join(work, 'gallery');
const hostile = `</script><img src=x onerror="document.title='broken'">&'"`;
const hostileFolder = hostile.replaceAll('/', '');
const count = 1003; // three pieces of data

const run = (...words) => execFileSync(vdsto, ['--library', join(work, 'library'), ...words], { encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });
const json = (...words) => JSON.parse(run('--json', ...words));

function makePhotos() {
  rmSync(work, { recursive: true, force: true });
  const folders = ['2024 제주도', '2024 제주도/성산 일출봉', '2025 부산', hostileFolder].map(name => join(photos, name));
  folders.forEach(folder => mkdirSync(folder, { recursive: true }));
  const names = ['해돋이', '바다', '오름', '노을', '파도', '숲길', '등대', '동백'];
  const models = Array.from({ length: 8 }, (_, i) => landscape(i, ...(i % 3 === 1 ? [400, 600] : [600, 400])));
  for (let i = 0; i < count; ++i) {
    const file = join(folders[i < 8 ? 0 : i < 20 ? 1 : i < count - 1 ? 2 : 3], `${names[i % 8]} ${i + 1}.png`);
    writeFileSync(file, models[i % 8]);
    const shot = new Date(2024, 4, 1 + Math.floor(i / 8), 6, i % 60);
    utimesSync(file, shot, shot);
  }
  writeFileSync(join(folders[3], 'broken.jpg'), 'no picture');
  utimesSync(join(folders[3], 'broken.jpg'), new Date(2029, 0), new Date(2029, 0));
}

function makeGallery() {
  run('import', photos);
  run('tag', 'add', '바다', '사진/2024 제주도');
  run('tag', 'add', hostile, `사진/${hostileFolder}/오름 ${count}.png`);
  run('title', hostile, `사진/${hostileFolder}/오름 ${count}.png`);
  run('describe', hostile, `사진/${hostileFolder}/오름 ${count}.png`);
  run('title', '제주의 아침', '사진/2024 제주도/해돋이 1.png');
  run('describe', '성산에서 본 첫 해', '사진/2024 제주도/해돋이 1.png');
  run('rotate', 'right', '사진/2024 제주도/오름 3.png');
  assert.deepEqual(json('gallery', '/', '-r', '-o', gallery, '--title', `제주와 부산 ${hostile}`),
    { folder: gallery, photos: count + 1, thumbnails: count });
}

// What is not a gallery is never written to, and a gallery only when the user says so.
function checkRefusals() {
  const refused = (expected, ...words) => {
    const { status, stderr } = spawnSync(vdsto, ['--library', join(work, 'library'), 'gallery', '/', '-r', ...words], { encoding: 'utf8' });
    assert.match(stderr, expected);
    assert.equal(status, 8);
  };
  refused(/is a gallery already: --force replaces it/, '-o', gallery);
  writeFileSync(join(gallery, 'data', 'mine.txt'), 'mine');
  refused(/holds data\/mine.txt, which is not the gallery's/, '-o', gallery, '--force');
  rmSync(join(gallery, 'data', 'mine.txt'));
  refused(/is not empty and no gallery/, '-o', photos, '--force');
  assert.equal(json('gallery', '/', '-r', '--tag', '바다', '-o', join(work, 'tagged')).photos, 8);
  assert.equal(json('gallery', '바다 2.png', '-o', join(work, 'tagged'), '--force').photos, 1);
  assert.deepEqual(readdirSync(join(work, 'tagged')).sort(), ['assets', 'data', 'index.html', 'thumbs', 'vdsto-gallery.json']);
  assert.deepEqual(readdirSync(join(work, 'tagged', 'thumbs', '0')), ['0.jpg']);
}

const faults = [];

async function open(browser, folder, options, prepare = () => {}) {
  const page = await browser.newPage({ locale: 'ko-KR', deviceScaleFactor: 1, ...options });
  await prepare(page);
  page.on('console', message => ['error', 'warning'].includes(message.type()) && faults.push(message.text()));
  page.on('pageerror', error => faults.push(String(error)));
  page.on('requestfailed', request => faults.push('failed: ' + request.url()));
  page.on('request', request => request.url().startsWith(pathToFileURL(folder).href + '/') || faults.push('left the folder: ' + request.url()));
  await page.goto(pathToFileURL(join(folder, 'index.html')).href);
  await thumbnails(page);
  return page;
}

const thumbnails = page => page.waitForFunction(() => {
  const images = [...document.querySelectorAll('.photo img')];
  return images.length > 0 && images.every(image => image.complete && image.naturalWidth > 0 && !image.classList.contains('waiting'));
});
const counted = page => page.textContent('#count');
const captionOf = page => page.textContent('.pswp .caption');
const choose = async (page, name) => {
  await page.locator('#places a').filter({ has: page.getByText(name, { exact: true }) }).click();
  await thumbnails(page);
};

async function lookAround(page) {
  assert.equal(await counted(page), `사진 ${count + 1}장`);
  assert.ok(await page.locator('.photo').count() < 120, 'only what is seen is there');
  assert.equal(await page.locator('.photo .name').first().textContent(), '제주의 아침');
  await choose(page, '바다');
  assert.equal(await counted(page), '사진 8장');
  await choose(page, '2024 제주도');
  assert.equal(await counted(page), '사진 20장', 'with the folder below');
  await choose(page, '2024-06');
  assert.equal(await counted(page), '사진 240장');
  await page.goBack();
  assert.equal(await counted(page), '사진 20장');
  await choose(page, '모든 사진');
  await page.locator('#view').evaluate(view => { view.scrollTop = view.scrollHeight; });
  await page.getByText(`바다 ${count - 1}.png`, { exact: true }).waitFor();
  assert.equal(await page.locator('.photo .none').textContent(), '미리보기 없음');
}

// Names, titles, descriptions and tags are texts, whatever stands in them.
async function meetHostileTexts(page) {
  await choose(page, hostileFolder);
  assert.equal(await page.locator('.photo .name').first().textContent(), hostile);
  assert.equal(await page.locator('#places a[href^="#tag"] span').first().textContent(), hostile);
  await page.locator('.photo').first().click();
  await page.waitForFunction(() => document.querySelector('.pswp .caption')?.childElementCount === 4);
  assert.deepEqual(await page.locator('.pswp .caption p').allTextContents(),
    [hostile, hostile, `오름 ${count}.png · 2024-09-03 06:42 · 개인 폴더 / 사진 / ${hostileFolder}`, '#' + hostile]);
  await closeSlides(page);
  assert.equal(await page.title(), `제주와 부산 ${hostile}`);
}

// While slides open they take no keys yet.
const slidesOpened = page => page.waitForFunction(() => document.activeElement.classList.contains('pswp'));

async function closeSlides(page) {
  await slidesOpened(page);
  await page.keyboard.press('Escape');
  await page.waitForFunction(() => !document.querySelector('.pswp'));
}

async function useTheKeyboard(page) {
  await choose(page, '성산 일출봉');
  await page.locator('.photo a').first().focus();
  for (const key of ['ArrowRight', 'ArrowDown', 'ArrowLeft', 'ArrowUp', 'End', 'Home', 'ArrowRight']) await page.keyboard.press(key);
  assert.equal(await page.evaluate(() => document.activeElement.dataset.place), '1');
  await page.keyboard.press('Enter');
  await page.waitForFunction(() => document.querySelector('.pswp .caption')?.textContent.includes('바다 10.png'));
  await slidesOpened(page);
  await page.keyboard.press('ArrowRight');
  await page.waitForFunction(() => document.querySelector('.pswp .caption').textContent.includes('오름 11.png'));
  await closeSlides(page);
  assert.equal(await page.evaluate(() => document.activeElement.dataset.place), '2', 'back where the slides ended');
}

async function watchSlides(page) {
  await choose(page, '모든 사진');
  await page.click('#play');
  await page.waitForFunction(() => document.querySelector('.pswp__img:not(.pswp__img--placeholder)')?.naturalWidth > 0);
  assert.match(await captionOf(page), /제주의 아침.*성산에서 본 첫 해.*해돋이 1.png.*개인 폴더 \/ 사진 \/ 2024 제주도.*#바다/);
  await page.waitForFunction(() => document.querySelector('.pswp .caption').textContent.includes('바다 2.png'), null, { timeout: 10000 });
  await page.keyboard.press('ArrowRight');
  await page.waitForFunction(() => document.querySelector('.pswp .caption').textContent.includes('오름 3.png'));
  const turned = await page.waitForFunction(() => {
    const image = [...document.querySelectorAll('.pswp__img:not(.pswp__img--placeholder)')].find(image => image.alt === '오름 3.png');
    return image?.naturalWidth && [image.naturalWidth < image.naturalHeight, image.width < image.height];
  });
  assert.deepEqual(await turned.jsonValue(), [true, true], 'turned by the user');
  await closeSlides(page);
}

// A slide whose data are on their way shows its photo when they come.
async function waitForLateData(browser) {
  let letThrough;
  const gate = new Promise(resolve => { letThrough = resolve; });
  const page = await open(browser, gallery, { viewport: { width: 1200, height: 760 } }, async page => {
    await page.route('**/data/1.js', async route => { await gate; await route.continue(); });
  });
  await page.locator('.photo a').first().focus();
  await page.keyboard.press('End');
  await page.keyboard.press('Enter');
  await slidesOpened(page);
  for (let i = 0; i < 5; ++i) await page.keyboard.press('ArrowLeft');
  await page.waitForFunction(() => document.querySelector('.pswp .caption').childElementCount === 0);
  letThrough();
  await page.waitForFunction(() => document.querySelector('.pswp .caption').textContent.includes('등대 999.png') &&
    [...document.querySelectorAll('.pswp__img')].some(image => image.alt === '등대 999.png' && image.naturalWidth > 0));
  await page.close();
}

async function picture(page, name) {
  if (screenshots) await page.screenshot({ path: join(screenshots, name + '.png') });
}

makePhotos();
makeGallery();
checkRefusals();
const browser = await chromium.launch({ executablePath: browserPath, args: ['--no-sandbox'] });
try {
  const page = await open(browser, gallery, { viewport: { width: 1200, height: 760 } });
  await lookAround(page);
  await meetHostileTexts(page);
  await useTheKeyboard(page);
  await watchSlides(page);
  await waitForLateData(browser);
  const pretty = join(work, 'pretty');
  run('gallery', '사진/2024 제주도', '사진/2025 부산', '-r', '-o', pretty, '--title', '제주와 부산');
  await picture(await open(browser, pretty, { viewport: { width: 1200, height: 760 } }), 'gallery-desktop');
  const phone = await open(browser, pretty, { viewport: { width: 390, height: 780 }, colorScheme: 'dark', hasTouch: true, isMobile: true });
  assert.ok(await phone.evaluate(() => document.documentElement.scrollWidth <= innerWidth), 'fits the phone');
  await picture(phone, 'gallery-phone');
  await phone.tap('#menu');
  await picture(phone, 'gallery-phone-menu');
  await choose(phone, '2025 부산');
  await phone.tap('.photo a >> nth=0');
  await phone.waitForSelector('.pswp .caption >> text=파도 21.png');
  await phone.waitForTimeout(500);
  await picture(phone, 'gallery-slide');
} finally {
  await browser.close();
}
assert.deepEqual(faults, []);
console.log('The gallery works.');
