// Pictures of hills under a sky, made from a number, as PNG files.
import { deflateSync } from 'node:zlib';

const crcTable = Array.from({ length: 256 }, (_, n) => {
  for (let bit = 0; bit < 8; ++bit) n = n & 1 ? (n >>> 1) ^ 0xedb88320 : n >>> 1;
  return n >>> 0;
});
const crc = bytes => ~bytes.reduce((sum, byte) => crcTable[(sum ^ byte) & 255] ^ (sum >>> 8), ~0) >>> 0;

function chunk(type, data) {
  const body = Buffer.concat([Buffer.from(type), data]);
  const framed = Buffer.alloc(body.length + 8);
  framed.writeUInt32BE(data.length, 0);
  body.copy(framed, 4);
  framed.writeUInt32BE(crc(body), body.length + 4);
  return framed;
}

function png(width, height, colourAt) {
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, 2, 0, 0, 0], 8);
  const lines = Buffer.alloc(height * (width * 3 + 1));
  for (let y = 0; y < height; ++y) {
    for (let x = 0; x < width; ++x) lines.set(colourAt(x / width, y / height), y * (width * 3 + 1) + 1 + x * 3);
  }
  return Buffer.concat([Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'), chunk('IHDR', header),
    chunk('IDAT', deflateSync(lines, { level: 1 })), chunk('IEND', Buffer.alloc(0))]);
}

const mix = (a, b, t) => a.map((value, i) => value + (b[i] - value) * t);
const skies = [[[64, 120, 190], [250, 214, 165]], [[28, 42, 92], [240, 128, 100]], [[120, 178, 226], [236, 244, 248]], [[70, 84, 120], [222, 190, 190]]];
const grounds = [[46, 92, 70], [38, 66, 96], [96, 84, 58], [72, 60, 92]];

export function landscape(seed, width, height) {
  const [top, bottom] = skies[seed % skies.length];
  const ground = grounds[(seed * 7 >> 2) % grounds.length];
  const sun = [0.2 + (seed * 0.37) % 0.6, 0.18 + (seed * 0.23) % 0.3];
  const ridge = (x, layer) => 0.5 + layer * 0.13 + 0.07 * Math.sin(x * (5 - layer) + seed * 1.7 + layer * 2) + 0.03 * Math.sin(x * 17 + seed + layer);
  return png(width, height, (x, y) => {
    for (let layer = 2; layer >= 0; --layer) {
      if (y > ridge(x, layer)) return mix(ground, bottom, 0.55 - layer * 0.24);
    }
    const far = Math.hypot((x - sun[0]) * width / height, y - sun[1]);
    return far < 0.06 ? [255, 244, 214] : mix(mix(top, bottom, y * 1.6 > 1 ? 1 : y * 1.6), [255, 244, 214], Math.max(0, 0.35 - far));
  });
}
