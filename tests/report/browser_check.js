// Opens report pages in the system's Chromium 360 and 1,200 px wide; prints as JSON per page
// and width the axe-core violations, what lies outside the window, fills too close to the
// background or to a bar of another meaning, and if a shortened key shows in full on focus.
// Usage: node browser_check.js CHROMIUM SCREENSHOT_DIR|- PAGE...
'use strict';
const fs = require('fs'), os = require('os'), path = require('path');
const { chromium } = require('playwright-core');
const [executable, shots, ...pages] = process.argv.slice(2);

// Runs in the page: the layout and contrast findings.
function measure() {
  const channel = (c) => (c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4);
  const luminance = (css) => css.match(/\d+(\.\d+)?/g).slice(0, 3)
    .reduce((sum, c, i) => sum + [0.2126, 0.7152, 0.0722][i] * channel(c / 255), 0);
  const contrast = (a, b) => (Math.max(luminance(a), luminance(b)) + 0.05) / (Math.min(luminance(a), luminance(b)) + 0.05);
  const width = document.documentElement.clientWidth;
  const outside = [];
  if (document.documentElement.scrollWidth > width) outside.push('page ' + document.documentElement.scrollWidth);
  const bars = [...document.querySelectorAll('.chart .bar')];
  for (const part of document.querySelectorAll('.chart .bar :is(.key, rect, .value)')) {
    const box = part.getBoundingClientRect();
    if (box.left < 0 || box.right > width + 0.5) outside.push(part.closest('.bar').className + ' ' + part.getAttribute('class'));
  }
  const background = getComputedStyle(document.body).backgroundColor;
  const fills = bars.map((bar) => ({ meaning: bar.className, ...getComputedStyle(bar.querySelector('rect')) }));
  const low = [];
  for (const a of fills) {
    if (Math.max(contrast(a.fill, background), contrast(a.stroke, background)) < 3) low.push(a.meaning + ' on background');
    for (const b of fills)
      if (a.meaning < b.meaning && contrast(a.fill, b.fill) < 3) low.push(a.meaning + ' / ' + b.meaning);
  }
  const key = [...document.querySelectorAll('.chart .key')].find((k) => k.scrollWidth > k.clientWidth);
  key?.focus();  // a shortened key shows in full, within the window
  const shortened = key ? { full_on_focus: key.scrollWidth <= key.clientWidth && key.getBoundingClientRect().right <= width } : null;
  return { bars: bars.length, outside, low_contrast: [...new Set(low)], shortened };
}

(async () => {
  const profile = fs.mkdtempSync(path.join(os.tmpdir(), 'advzorv-chromium-'));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: executable,
    headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
           '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
  const axe = require.resolve('axe-core/axe.min.js');
  const results = {};
  try {
    for (const page of pages) {
      results[page] = {};
      for (const width of [360, 1200]) {
        const tab = await context.newPage();
        await tab.setViewportSize({ width, height: 900 });
        await tab.goto('file://' + path.resolve(page));
        await tab.addScriptTag({ path: axe });
        const found = results[page][width] = await tab.evaluate(measure);
        found.violations = (await tab.evaluate(() => axe.run(document))).violations.map((v) => v.id + ': ' + v.nodes.map((n) => n.target).join(' '));
        if (shots !== '-')
          await tab.screenshot({ path: path.join(shots, path.basename(page) + '.' + width + '.png'), fullPage: true });
        await tab.close();
      }
    }
  } finally {
    await context.close();
    fs.rmSync(profile, { recursive: true, force: true });
  }
  console.log(JSON.stringify(results, null, 1));
})().catch((error) => { console.error(error); process.exit(2); });
