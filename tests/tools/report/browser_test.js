// The report's page in a real browser, as ./test.sh --browser runs it:
//     node browser_test.js PAGE.html OUT
// PAGE is that of tests/tools/report/big_run.py. Leaves screenshots and the printed page in OUT, and says
// how long the page takes; those figures are told, not judged.
'use strict';
const assert = require('assert');
const fs = require('fs');
const path = require('path');
const {chromium} = require('playwright-core');

const [file, out] = process.argv.slice(2).map((name) => path.resolve(name));
const address = 'file://' + file;
const switches = ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
                  '--disable-background-networking', '--disable-component-update',
                  '--disable-sync'];
const desktop = {viewport: {width: 1280, height: 900}};
const phone = {viewport: {width: 390, height: 844}, isMobile: true, hasTouch: true};

async function open(browser, options) {
  const context = await browser.newContext(options);
  const page = await context.newPage();
  page.on('pageerror', (error) => assert.fail('the page\'s script: ' + error.message));
  page.on('dialog', () => assert.fail('a case name was run as a script'));
  page.on('request', (request) => assert(/^(file|data):/.test(request.url()), request.url()));
  await page.goto(address);
  return page;
}

const shown = (page) => page.textContent('#shown');
const visibleRows = (page) => page.$$eval('.module tbody tr', (rows) =>
  rows.filter((row) => !row.hidden).length);

async function search(page) {
  await page.keyboard.press('/');
  assert.strictEqual(await page.evaluate(() => document.activeElement.id), 'search');
  await page.keyboard.type('module_07 check_01');
  assert.strictEqual(await shown(page), '10 of 4200 rows');
  assert.strictEqual(await visibleRows(page), 10);
  await page.fill('#search', '<img src=x');
  assert.strictEqual(await visibleRows(page), 1);
  await page.fill('#search', 'no such case');
  assert.strictEqual(await visibleRows(page), 0);
  await page.keyboard.press('Escape');
  await page.waitForFunction(() => !document.querySelector('.module tr[hidden]'));
  assert.strictEqual(await shown(page), '4200 of 4200 rows');
}

async function filters(page) {
  await page.click('.tiles a[data-v=Fail]');
  const fails = parseInt(await page.textContent('.tiles a[data-v=Fail] b'), 10);
  assert.strictEqual(await shown(page), fails + ' of 4200 rows');
  await page.waitForFunction((count) => document.querySelectorAll(
    '.module tbody tr:not([hidden])').length === count, fails);
  await page.selectOption('#module', 'Module-01');
  const words = await page.$$eval('.module tbody tr', (rows) => rows.filter((row) => !row.hidden)
    .map((row) => row.closest('.module').dataset.name + row.dataset.v));
  assert(words.length > 0 && words.every((word) => word === 'Module-01Fail'), words.join());
  await page.click('#reset');
  await page.uncheck('input[name=verdict][value=Pass]');
  assert.strictEqual(await page.$$eval('.module tr[data-v=Pass]', (rows) =>
    rows.filter((row) => !row.hidden).length), 0);
}

async function links(page) {
  // To a row that the filter of the test before hides.
  await page.click('#slow tbody tr:first-child a');
  await page.waitForFunction(() => document.querySelector('tr:target') &&
    !document.querySelector('tr:target').hidden);
  // From a row to its log and back.
  await page.evaluate(() => { location.hash = ''; });
  await page.click('#failures ~ .failure h3 a');
  await page.waitForFunction(() => document.querySelector('tr:target'));
  const place = await page.$eval('tr:target', (row) => row.getBoundingClientRect().top);
  assert(place >= 0 && place < 900, 'the row is out of sight: ' + place);
  await page.click('tr:target a');
  await page.waitForFunction(() => document.querySelector('.failure:target'));
  await page.click('.failure:target summary');
  assert(await page.$eval('.failure:target details', (details) => details.open));
  assert.match(await page.textContent('.failure:target pre'), /case \d+:\[TC_.*Start!/);
}

/** What a screen reader and the keyboard find. */
async function access(page) {
  const nameless = await page.$$eval('a, button, input, select, [role=img]', (elements) =>
    elements.filter((element) => !(element.textContent.trim() || element.title ||
      element.getAttribute('aria-label') || element.closest('label'))).length);
  assert.strictEqual(nameless, 0);
  const levels = await page.$$eval('h1, h2, h3', (all) => all.map((one) => +one.tagName[1]));
  levels.forEach((level, i) => assert(i === 0 ? level === 1 : level <= levels[i - 1] + 1));
  await page.evaluate(() => { location.hash = ''; document.activeElement.blur(); scrollTo(0, 0); });
  await page.keyboard.press('Tab');
  assert.strictEqual(await page.evaluate(() => document.activeElement.className), 'skip');
  await page.keyboard.press('Enter');
  await page.keyboard.press('Tab');
  assert.strictEqual(await page.evaluate(() => document.activeElement.id), 'search');
}

/** Contrast of the texts against what lies behind them, as WCAG 2 has it: 4.5 to 1. */
async function contrast(page, name) {
  const poor = await page.evaluate(() => {
    const light = (colour) => {
      const parts = colour.match(/[\d.]+/g).map(Number).slice(0, 3).map((part) => {
        const c = part / 255;
        return c <= 0.04045 ? c / 12.92 : Math.pow((c + 0.055) / 1.055, 2.4);
      });
      return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
    };
    const behind = (element) => {
      for (; element; element = element.parentElement) {
        const colour = getComputedStyle(element).backgroundColor;
        if (/^rgb\(/.test(colour))
          return colour;
      }
      return 'rgb(255, 255, 255)';
    };
    const seen = {};
    document.querySelectorAll('.v, .tag, .soft, .why, a, h1, td, th, summary, pre span, button')
      .forEach((element) => {
        const front = getComputedStyle(element).color, back = behind(element);
        const pair = [light(front), light(back)].sort((a, b) => b - a);
        const ratio = (pair[0] + 0.05) / (pair[1] + 0.05);
        if (ratio < 4.5)
          seen[element.className + ' ' + front + ' on ' + back] = ratio.toFixed(2);
      });
    return seen;
  });
  assert.deepStrictEqual(poor, {}, name);
}

async function pictures(browser) {
  const shot = async (name, options, selector, full) => {
    const page = await open(browser, options);
    if (selector)
      await page.$eval(selector, (element) => element.scrollIntoView());
    await page.waitForTimeout(200);
    const wide = await page.evaluate(() => document.documentElement.scrollWidth - innerWidth);
    assert(wide <= 0, name + ' is ' + wide + ' pixels too wide');
    await contrast(page, name);
    await page.screenshot({path: path.join(out, name + '.png'), fullPage: Boolean(full)});
    await page.context().close();
  };
  const dark = {colorScheme: 'dark'};
  await shot('light', desktop);
  await shot('light_timeline', desktop, '#timeline');
  await shot('light_rows', desktop, '#rows');
  await shot('dark', {...desktop, ...dark});
  await shot('dark_failures', {...desktop, ...dark}, '#failures');
  await shot('phone', phone);
  await shot('phone_rows', {...phone, ...dark}, '#rows');
}

async function paper(browser) {
  const page = await open(browser, desktop);
  // Rows that still wait for their frame are printed, too.
  await page.fill('#search', 'no such case');
  assert.strictEqual(await page.evaluate(() => {
    const field = document.getElementById('search');
    field.value = '';
    field.dispatchEvent(new Event('input'));
    window.dispatchEvent(new Event('beforeprint'));
    return document.querySelectorAll('.module tr[hidden]').length;
  }), 0);
  await page.fill('#search', 'check_001');
  await page.pdf({path: path.join(out, 'page.pdf'), format: 'A4'});
  const pdf = fs.readFileSync(path.join(out, 'page.pdf'), 'latin1');
  const count = (pdf.match(/\/Type\s*\/Page\b/g) || []).length;
  assert(count > 5, 'the printed page has ' + count + ' pages');
  console.log('printed: ' + count + ' pages');
  await page.context().close();
}

/** Processor time of the page's own thread, for a machine has other work as well. */
async function measure(browser) {
  const page = await open(browser, desktop);
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', {timeDomain: 'threadTicks'});
  const busy = async () => (await session.send('Performance.getMetrics')).metrics
    .find((metric) => metric.name === 'TaskDuration').value * 1000;
  await page.reload();
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => setTimeout(done))));
  console.log('opening: ' + (await busy()).toFixed(0) + ' ms');
  await page.focus('#search');
  await page.evaluate(() => {
    window.late = 0;
    new PerformanceObserver((list) => list.getEntries().forEach((task) => {
      window.late = Math.max(window.late, task.duration);
    })).observe({type: 'longtask'});
  });
  let longest = 0;
  for (const text of ['t', 'tc', 'module', 'check_0', 'img', '', 'fail', 'zzz', '', 'marked', '']) {
    await page.waitForTimeout(400);
    const before = await busy();
    await page.evaluate(async (value) => {
      const field = document.getElementById('search');
      field.value = value;
      field.dispatchEvent(new Event('input'));
      await new Promise((done) => requestAnimationFrame(() => {
        const channel = new MessageChannel();
        channel.port1.onmessage = done;
        channel.port2.postMessage(0);
      }));
    }, text);
    longest = Math.max(longest, await busy() - before);
  }
  // A key pressed meanwhile waits for the piece that runs; the browser tells those above 50 ms.
  const late = await page.evaluate(() => window.late);
  console.log('search among 4200 rows: at most ' + longest.toFixed(0) + ' ms, then ' +
    (late > 0 ? 'pieces of up to ' + late.toFixed(0) : 'no piece above 50') + ' ms');
  await page.context().close();
}

(async () => {
  fs.mkdirSync(out, {recursive: true});
  const browser = await chromium.launch(
    {executablePath: process.env.ZK_BROWSER || '/usr/bin/chromium', args: switches});
  try {
    const page = await open(browser, desktop);
    for (const step of [search, filters, links, access]) {
      await step(page);
      console.log(step.name + ': good');
    }
    const still = await open(browser, {...desktop, javaScriptEnabled: false});
    assert.strictEqual(await still.locator('.module tbody tr').count(), 4200);
    assert(await still.locator('.controls').isHidden());
    await pictures(browser);
    await paper(browser);
    await measure(browser);
  } finally {
    await browser.close();
  }
  console.log('browser: all good; pictures in ' + out);
})().catch((error) => {
  console.error(error);
  process.exit(1);
});
