#!/bin/sh
# Packs what a board gets: the program, the configuration of its platform, a start script, a template
# of reboot.sh, version and licence texts.
#     package.sh --platform NAME --out FILE.tar.gz [options]
#         --platform NAME   a folder of config/, such as mtk9602_eu
#         --build DIR       folder of the built program (build/device)
#         --rehearsal       also the simulated device and virtual time, of a build of this machine
#         --checklist FILE  the checklist workbook
#         --streams DIR     the reference streams, as stream/ts
#         --licence FILE    a licence text that belongs to it; may be repeated
set -e
usage() {
    sed -n '4,10p' "$0" | cut -c3- >&2
    exit 2
}
fail() {
    echo "package: $*" >&2
    exit 1
}
project=$(cd "$(dirname "$0")/../.." && pwd)
platform= out= rehearsal= checklist= streams= build=$project/build/device
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/zktest" "$work/zktest/licences"
top=$work/zktest
while [ $# -gt 0 ]; do
    case $1 in
    --rehearsal) rehearsal=1; shift; continue ;;
    --platform | --out | --build | --checklist | --streams | --licence) [ $# -gt 1 ] || usage ;;
    *) usage ;;
    esac
    case $1 in
    --platform) platform=$2 ;;
    --out) out=$2 ;;
    --build) build=$2 ;;
    --checklist) checklist=$2 ;;
    --streams) streams=$2 ;;
    --licence) cp "$2" "$top/licences/" ;;
    esac
    shift 2
done
[ -n "$platform" ] && [ -n "$out" ] || usage
[ -d "$project/config/$platform" ] && [ "$platform" != common ] ||
    fail "there is no platform $platform: $(ls "$project/config" | grep -v '^common' | tr '\n' ' ')"
[ -x "$build/zktest" ] || fail "$build/zktest is not there: build it first"

# The platform's number is told where it is set.
selection=$project/config/common/auto_test_platform.cfg
number=$(grep '^#' "$selection" | grep -oE "[0-9]+ $platform([ ,.]|\$)" | cut -d' ' -f1)
[ -n "$number" ] || fail "$selection does not tell the number of $platform"
cp "$build/zktest" "$top/"
mkdir "$top/config"
cp -r "$project/config/common" "$project/config/$platform" "$top/config/"
cp "$project"/config/*.cfg "$top/config/" 2> /dev/null || true
sed "s/^PLATFORM=.*/PLATFORM=$number/" "$selection" > "$top/config/common/auto_test_platform.cfg"
cp "$project/tools/boards/start.sh" "$top/"
if [ -n "$rehearsal" ]; then
    [ -x "$build/vclock/run" ] || fail "$build is no build for a rehearsal"
    mkdir "$top/vclock" "$top/device"
    cp "$build/libQlx.so" "$top/"
    cp "$build/vclock/run" "$build/vclock/libvclock.so" "$top/vclock/"
    cp "$project/tools/boards/reboot_rehearsal.sh" "$top/reboot.sh"
else
    cp "$project/tools/boards/reboot.sh.template" "$top/"
fi
[ -z "$checklist" ] || cp "$checklist" "$top/checklist.xls"
if [ -n "$streams" ]; then
    mkdir -p "$top/stream/ts"
    cp -r "$streams/." "$top/stream/ts/"
fi

# What it is, and whose libraries it needs. The licence texts are those of this machine's packages:
# for a library that comes with the board, the board's maker has them.
version=$(grep -rhoE --include='*.cpp' --exclude-dir=build 'programVersion\[\] = "[^"]+"' "$project" | cut -d'"' -f2)
[ -n "$version" ] || fail "the program's version is not told"
needed=$(readelf -d "$top/zktest" "$top"/*.so 2> /dev/null |
    sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort -u)
{
    echo "version: $version"
    echo "source: $(git -C "$project" describe --always --dirty 2> /dev/null || echo unknown)"
    echo "platform: $platform ($number)"
    if [ -n "$rehearsal" ]; then echo "kind: rehearsal"; else echo "kind: device"; fi
    echo "machine: $(readelf -h "$top/zktest" | sed -n 's/ *Machine: *//p')"
    echo "needs:"
    for library in $needed; do
        [ -e "$top/$library" ] && continue
        owner=$(dpkg-query -S "*/$library" 2> /dev/null | grep -v i386 | head -n 1 | cut -d: -f1)
        text=/usr/share/doc/${owner:-none}/copyright
        if [ -n "$owner" ] && [ -e "$text" ]; then
            cp "$text" "$top/licences/$owner.txt"
            echo "    $library: licences/$owner.txt"
        else
            echo "    $library: licence text not on this machine"
        fi
    done
} > "$top/VERSION"
for text in "$project"/LICEN[CS]E* "$project"/COPYING*; do
    [ ! -e "$text" ] || cp "$text" "$top/licences/"
done
tar -C "$work" --owner=0 --group=0 --sort=name -czf "$out.tmp" zktest
mv "$out.tmp" "$out"
echo "package: $out, zktest $version for $platform, $(du -h "$out" | cut -f1)"
