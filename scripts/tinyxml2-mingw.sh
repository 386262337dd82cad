#!/usr/bin/env bash
# Builds tinyxml2 for the Windows cross-build: Debian's own source package
# (bookworm), compiled as a static library with the mingw-w64 toolchain and
# installed into a prefix outside the repository, where the windows preset
# finds it. Done once; a prefix that already holds the library is kept.
#   scripts/tinyxml2-mingw.sh [PREFIX]
# PREFIX defaults to ${XDG_CACHE_HOME:-$HOME/.cache}/zk64/mingw-w64/tinyxml2.
# The source is fetched with apt-get through private source and list
# directories, so the machine's apt configuration is left as it is.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
prefix=${1:-${XDG_CACHE_HOME:-$HOME/.cache}/zk64/mingw-w64/tinyxml2}
[ -f "$prefix/lib/libtinyxml2.a" ] && [ -f "$prefix/include/tinyxml2.h" ] && exit 0

work=$(mktemp -d "${TMPDIR:-/tmp}/zk64-tinyxml2.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/apt/sources" "$work/apt/lists/partial" "$work/source"
cat > "$work/apt/sources/bookworm-src.sources" <<SOURCES
Types: deb-src
URIs: http://deb.debian.org/debian
Suites: bookworm
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
SOURCES
apt_options=(-o "Dir::Etc::SourceParts=$work/apt/sources" -o Dir::Etc::SourceList=/dev/null
             -o "Dir::State::Lists=$work/apt/lists" -o APT::Sandbox::User=root)

echo "tinyxml2 for mingw-w64: fetching Debian's source package"
apt-get "${apt_options[@]}" -q update >/dev/null
(cd "$work/source" && apt-get "${apt_options[@]}" -q source --download-only tinyxml2 >/dev/null 2>&1)
dsc=$(ls "$work"/source/tinyxml2_*.dsc)
# Unpacked with Debian's patches applied.
dpkg-source --no-check -x "$dsc" "$work/source/tinyxml2" >/dev/null

echo "tinyxml2 for mingw-w64: building into $prefix"
cmake -S "$work/source/tinyxml2" -B "$work/build" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS=OFF -Dtinyxml2_BUILD_TESTING=OFF \
    -DCMAKE_INSTALL_PREFIX="$prefix" >/dev/null
cmake --build "$work/build" >/dev/null
cmake --install "$work/build" >/dev/null
echo "tinyxml2 for mingw-w64: done"
