#!/usr/bin/env bash
# Installs the Debian packages that this project needs, and those named as arguments, as far as they are missing.
# Does nothing, and needs no rights, when all are there.
set -euo pipefail

packages=(
    g++ cmake ninja-build python3-minimal       # the build
    libjpeg62-turbo-dev                         # the library: images
    libfreetype-dev libfontconfig-dev           # the library: texts
    fonts-dejavu-core                           # letters for the demonstration and the tests
    libcli11-dev nlohmann-json3-dev libpng-dev  # the programs
    libsdl2-dev                                 # the viewer's window
    help2man                                    # manual pages
    libgtest-dev libgmock-dev libbenchmark-dev  # tests and benchmarks
    python-matplotlib-data                      # a photograph for the demonstration
    "$@"
)

missing=()
for package in "${packages[@]}"; do
    dpkg-query --show --showformat='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
        missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: needs root or sudo to install ${missing[*]}" >&2; exit 1; }
    as_root=(sudo "${as_root[@]}")
fi
echo "setup: installing ${missing[*]}"
"${as_root[@]}" apt-get -qq update || echo "setup: some package lists could not be renewed" >&2
"${as_root[@]}" apt-get -qq -o Dpkg::Use-Pty=0 install --yes --no-install-recommends "${missing[@]}" >/dev/null
