// Brings the page of a run in progress up to date each second, without losing the reader's place.
(function () {
  'use strict';
  function again() {
    fetch('/', {cache: 'no-store'}).then(function (answer) {
      if (!answer.ok)
        throw new Error(answer.status);
      return answer.text();
    }).then(function (text) {
      var page = new DOMParser().parseFromString(text, 'text/html');
      var fresh = page.querySelector('main'), old = document.querySelector('main');
      if (fresh.innerHTML !== old.innerHTML)
        old.replaceWith(fresh);
      document.title = page.title;
    }).catch(function () {
      document.title = 'no answer';
      document.querySelector('.verdict').textContent = 'The watching program does not answer.';
    }).then(function () { setTimeout(again, 1000); });
  }
  setTimeout(again, 1000);
}());
