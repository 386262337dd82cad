#!/usr/bin/env bash
# Installs the Debian packages the build needs and that are missing.
#   scripts/deps.sh linux   native Linux build, tests and benchmarks
#   scripts/deps.sh all     also the Windows cross-build and Wine (default)
set -euo pipefail

profile=${1:-all}
packages=(cmake ninja-build g++ make pkg-config googletest libgtest-dev libbenchmark-dev libtbb-dev libmimalloc-dev libtinyxml2-dev
          libcli11-dev libpng-dev  # the zk command
          bfs fd-find dpkg-dev)  # the last two: yardsticks of the directory-search benchmark
if [ "$profile" = all ]; then
    packages+=(g++-mingw-w64-x86-64-posix gcc-mingw-w64-i686-posix wine wine64 xvfb xauth clang libclang-rt-14-dev)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -ne 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=()
    [ "$(id -u)" -ne 0 ] && sudo=(sudo)
    "${sudo[@]}" apt-get update -q
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -q "${missing[@]}"
fi

# Debian has no tinyxml2 or libpng for mingw-w64: built from their source packages.
if [ "$profile" = all ]; then
    "$(dirname "$0")/mingw-deps.sh" tinyxml2
    "$(dirname "$0")/mingw-deps.sh" png
fi
