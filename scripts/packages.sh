#!/usr/bin/env bash
# Makes the Debian packages libkalvo6, libkalvo-svg6, libkalvo-dev, kalvo and python3-kalvo in build/packages, and has lintian look at them.
# packages.sh --try also installs them in a bare Debian, builds and runs a program with them, and removes them; that
# takes root and some minutes.
set -euo pipefail

cd "$(dirname "$0")/.."
scripts/setup.sh dpkg-dev file lintian pybind11-dev python3-dev
cmake --preset release -B build/packages -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_SKIP_INSTALL_RPATH=ON \
      -DKALVO_BUILD_BENCHMARKS=OFF -DKALVO_BUILD_PYTHON=ON -DKALVO_PACKAGES=ON
cmake --build build/packages
rm -f build/packages/*.deb
(cd build/packages && umask 022 && cpack)
lintian --fail-on error --suppress-tags initial-upload-closes-no-bugs build/packages/*.deb
[ "${1:-}" = --try ] || exit 0

scripts/setup.sh debootstrap
root=$(mktemp -d)
trap 'rm -rf --one-file-system "$root"' EXIT
mirror=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null | grep -E '^(deb|URIs:) ' |
             grep -o -m 1 'https\?://[^ ]*' || true)
debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" ${mirror:+"$mirror"} >/dev/null
cp build/packages/*.deb examples/any_file.cpp "$root/root"
cat >"$root/root/try" <<'TRY'
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
cd /root
apt-get -qq install --yes --no-install-recommends g++ cmake make pkg-config >/dev/null
dpkg-query --show | cut -f 1 | sort >before
find / -xdev \( -path /var -o -path /root -o -path /tmp -o -path /etc \) -prune -o -print | sort >files_before
apt-get -qq install --yes --no-install-recommends ./*.deb >/dev/null
cat >CMakeLists.txt <<'CMAKE'
cmake_minimum_required(VERSION 3.20)
project(consumer CXX)
find_package(kalvo 6 REQUIRED COMPONENTS svg)
add_executable(consumer any_file.cpp)
target_link_libraries(consumer PRIVATE kalvo::svg)
CMAKE
cmake -S . -B consumer_build >/dev/null
cmake --build consumer_build >/dev/null
consumer_build/consumer
g++ any_file.cpp $(pkg-config --cflags --libs kalvo) -o consumer
./consumer >/dev/null
kalvo --version
kalvo-view --version
python3 -c 'import kalvo; kalvo.Image(9, 9).save("nine.png"); assert kalvo.load("nine.png").width == 9'
apt-get -qq purge --yes kalvo libkalvo-dev libkalvo6 libkalvo-svg6 python3-kalvo >/dev/null
apt-get -qq autoremove --purge --yes >/dev/null
dpkg-query --show | cut -f 1 | sort | diff before -
find / -xdev \( -path /var -o -path /root -o -path /tmp -o -path /etc \) -prune -o -print | sort | diff files_before -
echo "installed, used and removed"
TRY
env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root chroot "$root" bash /root/try
