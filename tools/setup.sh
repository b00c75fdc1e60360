#!/bin/sh
# Installs the Debian packages that the build and the tests need and this machine lacks, or those of
# another list: tools/setup.sh [LIST]
# Asks nothing; needs root or sudo only when something is missing.
set -e
list=${1:-$(dirname "$0")/packages.txt}
missing=
while read -r package; do
    [ -n "$package" ] || continue
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing="$missing $package"
done < "$list"
if [ -z "$missing" ]; then
    echo "setup: all packages are there"
    exit 0
fi
echo "setup: installing$missing"
sudo=
[ "$(id -u)" = 0 ] || sudo=sudo
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
# shellcheck disable=SC2086
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
