// Search and filters of the table of rows. Without this script the page shows all rows.
(function () {
  'use strict';
  var $ = function (id) { return document.getElementById(id); };
  var search = $('search'), module = $('module'), shown = $('shown');
  var boxes = Array.from(document.querySelectorAll('input[name=verdict]'));
  var sections = Array.from(document.querySelectorAll('.module'));
  var rows = [];
  sections.forEach(function (section, s) {
    var name = section.dataset.name;
    Array.from(section.querySelectorAll('tbody tr')).forEach(function (element) {
      rows.push({
        element: element, section: s, module: name, verdict: element.dataset.v, hidden: false,
        text: (name + ' ' + element.textContent).toLowerCase()
      });
    });
  });

  // What is to be seen first is shown at once, the rest in pieces, each behind a frame of its own, so
  // that typing never waits.
  var atOnce = 20, aPiece = 150;
  var waiting = [];

  function show(count) {
    waiting.splice(0, count).forEach(function (row) {
      row.element.hidden = row.hidden = false;
    });
  }

  function showLater(rest) {
    if (rest !== waiting || rest.length === 0)
      return;
    requestAnimationFrame(function () {
      setTimeout(function () {
        if (rest !== waiting)
          return;
        show(aPiece);
        showLater(rest);
      }, 0);
    });
  }

  function filter() {
    var words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    var on = {};
    boxes.forEach(function (box) { on[box.value] = box.checked; });
    var left = sections.map(function () { return 0; });
    var count = 0;
    waiting = [];
    rows.forEach(function (row) {
      var hide = !on[row.verdict] || (module.value !== '' && row.module !== module.value) ||
        !words.every(function (word) { return row.text.indexOf(word) >= 0; });
      if (!hide) {
        left[row.section]++;
        count++;
      }
      if (hide === row.hidden)
        return;
      if (hide || count <= atOnce)
        row.element.hidden = row.hidden = hide;
      else
        waiting.push(row);
    });
    sections.forEach(function (section, s) {
      section.classList.toggle('empty', left[s] === 0);
      section.style.setProperty('--high', (left[s] * 2.2 + 4) + 'rem');
    });
    shown.textContent = count + ' of ' + rows.length + ' rows';
    showLater(waiting);
    // The first row found is the one to be looked at.
    if (document.activeElement === search && $('rows').getBoundingClientRect().bottom < 0)
      $('rows').scrollIntoView();
  }

  function reset() {
    search.value = '';
    module.value = '';
    boxes.forEach(function (box) { box.checked = true; });
    filter();
  }

  // A link that counts rows shows those rows.
  function choose(link) {
    reset();
    if (link.dataset.v)
      boxes.forEach(function (box) { box.checked = box.value === link.dataset.v; });
    if (link.dataset.m)
      module.value = link.dataset.m;
    filter();
  }

  // A link to a row that the filters hide brings it back.
  function showTarget() {
    var target = location.hash.length > 1 ? document.getElementById(location.hash.slice(1)) : null;
    if (target && target.closest('[hidden]')) {
      reset();
      target.hidden = false;
      target.scrollIntoView({block: 'center'});
    }
  }

  search.addEventListener('input', filter);
  module.addEventListener('change', filter);
  boxes.forEach(function (box) { box.addEventListener('change', filter); });
  $('reset').addEventListener('click', function () { reset(); search.focus(); });
  document.addEventListener('click', function (event) {
    var link = event.target.closest('a[data-v], a[data-m]');
    if (link)
      choose(link);
  });
  document.addEventListener('keydown', function (event) {
    if (event.key === '/' && !/^(INPUT|SELECT|TEXTAREA)$/.test(document.activeElement.tagName)) {
      event.preventDefault();
      search.focus();
      search.select();
    } else if (event.key === 'Escape' && document.activeElement === search) {
      reset();
    }
  });
  window.addEventListener('hashchange', showTarget);

  var logs = Array.from(document.querySelectorAll('.failure details'));
  var all = $('logs');
  if (all) {
    all.hidden = false;
    all.addEventListener('click', function () {
      var open = logs.some(function (log) { return !log.open; });
      logs.forEach(function (log) { log.open = open; });
      all.textContent = open ? 'Close all logs' : 'Open all logs';
    });
  }
  // Paper cannot be opened. A report in which everything fails would be a book.
  var opened = [];
  window.addEventListener('beforeprint', function () {
    show(waiting.length);
    opened = logs.slice(0, 200).filter(function (log) { return !log.open; });
    opened.forEach(function (log) { log.open = true; });
  });
  window.addEventListener('afterprint', function () {
    opened.forEach(function (log) { log.open = false; });
  });
  document.querySelector('.controls').hidden = false;
  filter();
  showTarget();
}());
