#!/bin/sh
# Builds the program, the simulated device and virtual time for 32-bit ARM, and runs scenario tests of
# them in an emulator, the whole unattended certification among them: its verdicts must be the
# reviewed ones. Installs what is missing. Needs build/debug for the tools of this machine.
#     tools/arm.sh [TEST...]    names of tests/scenario, without "_test"
set -e
cd "$(dirname "$0")/.."
if [ ! -x build/debug/zkbench ]; then
    echo "arm: build preset debug first" >&2
    exit 1
fi
tools/setup.sh tools/packages_arm.txt
arm=$PWD/build/arm
libraries=$arm/sysroot/usr/lib/arm-linux-gnueabihf

# The one library that the simulated device needs, from the package lists of that architecture; they
# are kept apart from this machine's own.
if [ ! -e "$libraries/libcrypto.so" ]; then
    echo "arm: fetching libraries"
    lists=$arm/packages
    mkdir -p "$lists/lists/partial" "$lists/archives/partial"
    apt="apt-get -qq -o APT::Architecture=armhf -o APT::Architectures::=armhf -o Dir::State=$lists
        -o Dir::State::status=/dev/null -o Dir::Cache=$lists -o APT::Sandbox::User=root"
    $apt update || echo "arm: some package lists are not there"
    (cd "$lists" && $apt download libssl3 libssl-dev)
    for package in "$lists"/*.deb; do
        dpkg -x "$package" "$arm/sysroot"
    done
fi
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake --preset arm --no-warn-unused-cli > /dev/null
cmake --build --preset arm
# The program as README.md builds it for a device, which knows of the library nothing but its name.
cmake -S . -B "$arm/device" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/tools/arm.cmake" -DZK_QLX_LIBRARY="$arm/libQlx.so" \
    --no-warn-unused-cli > /dev/null
cmake --build "$arm/device" --target zktest

# What a board gets of it: the package, unpacked elsewhere, holds a program of that machine that starts.
package=$(mktemp -d)
trap 'rm -rf "$package"' EXIT
tools/boards/package.sh --build "$arm/device" --platform mtk9602_eu --out "$package/zktest.tar.gz"
tar -C "$package" -xzf "$package/zktest.tar.gz"
grep -E '^(kind: device|machine: ARM)$' "$package/zktest/VERSION" | wc -l | grep -qx 2 ||
    { echo "arm: the package is not the device's:"; cat "$package/zktest/VERSION"; exit 1; } >&2
(cd "$package/zktest" && echo q | timeout 60 qemu-arm -L /usr/arm-linux-gnueabihf \
    -E LD_LIBRARY_PATH="$arm:$libraries" ./zktest > "$package/console" 2>&1) ||
    { echo "arm: the packaged program does not start"; cat "$package/console"; exit 1; } >&2

# A folder as tests expect a build: the device's programs, and this machine's tools and launcher. The
# loader's word on a preload library of another class is this machine's, before the emulator starts.
tests=$arm/tests
mkdir -p "$tests/vclock"
ln -sf "$PWD/build/debug/zkbench" "$PWD/build/debug/mkchecklist" "$PWD/build/debug/mkstreams" "$tests"
ln -sf "$arm/vclock/libvclock.so" "$tests/vclock"
cp -f build/debug/vclock/run "$tests/vclock/run"
cat > "$tests/zktest" << END
#!/bin/sh
exec qemu-arm -L /usr/arm-linux-gnueabihf -E OPENSSL_MODULES=$libraries/ossl-modules $arm/device/zktest "\$@"
END
chmod +x "$tests/zktest"
[ $# -gt 0 ] || set -- golden auto recovery reproducible demux tuner_manual device_manual
for name in "$@"; do
    echo "arm: $name"
    ZK_BUILD_DIR=$tests ZK_KILLS=12 /usr/bin/python3 "tests/scenario/${name}_test.py" 2> "$arm/$name.log" ||
        { grep -v 'cannot be preloaded' "$arm/$name.log" >&2; exit 1; }
    tail -1 "$arm/$name.log"
done
