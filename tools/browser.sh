#!/bin/sh
# Tests the report's page in a real browser, headless, and leaves pictures of it in build/browser.
# Installs what is missing: Debian's browser, and its driver from npm. Needs build/debug.
set -e
cd "$(dirname "$0")/.."
tools/setup.sh tools/packages_browser.txt
# Where node comes from elsewhere, Debian's npm does not go with it.
command -v npm > /dev/null || printf 'nodejs\nnpm\n' | tools/setup.sh /dev/stdin
here=$PWD/build/browser
mkdir -p "$here"
[ -d "$here/node_modules/playwright-core" ] ||
    PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm install --prefix "$here" --no-audit --no-fund \
        --no-save --silent playwright-core@1.48.2
/usr/bin/python3 tests/tools/report/big_run.py "$here/run" --measure build/debug/zkreport
NODE_PATH=$here/node_modules timeout 300 \
    node tests/tools/report/browser_test.js "$here/run/out.html" "$here/pictures"
