#!/usr/bin/env bash
# Builds what Debian does not ship for the Windows cross-build, each from
# Debian's own source package (bookworm), compiled as a static library with
# the mingw-w64 toolchain and installed into a prefix outside the repository:
#   tinyxml2   the library's one dependency (it reads application manifests)
#   png        libpng with zlib, for the zk command's noise pictures
#   scripts/mingw-deps.sh WHAT [PREFIX]
# PREFIX defaults to ${XDG_CACHE_HOME:-$HOME/.cache}/zk64/mingw-w64/WHAT. A
# prefix that already holds the result is kept. Sources are fetched with
# apt-get through private source and list directories, so the machine's apt
# configuration is left as it is.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
what=${1:?"usage: $0 tinyxml2|png [PREFIX]"}
prefix=${2:-${XDG_CACHE_HOME:-$HOME/.cache}/zk64/mingw-w64/$what}
case $what in
    tinyxml2) done_file=$prefix/lib/libtinyxml2.a ;;
    png) done_file=$prefix/lib/libpng16.a ;;
    *) echo "$0: nothing known as '$what'" >&2; exit 2 ;;
esac
[ -f "$done_file" ] && exit 0

work=$(mktemp -d "${TMPDIR:-/tmp}/zk64-mingw-$what.XXXXXX")
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
apt-get "${apt_options[@]}" -q update >/dev/null

# configure PACKAGE CMAKE-ARGUMENTS...: fetch, unpack with Debian's patches
# applied and configure; `make PACKAGE [TARGET]` builds.
configure() {
    local package=$1
    shift
    echo "$package for mingw-w64: fetching Debian's source package, building into $prefix"
    (cd "$work/source" && apt-get "${apt_options[@]}" -q source --download-only "$package" >/dev/null 2>&1)
    dpkg-source --no-check -x "$(ls "$work"/source/"${package}"_*.dsc)" "$work/source/$package" >/dev/null
    cmake -S "$work/source/$package" -B "$work/build-$package" -G Ninja -Wno-dev \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$prefix" "$@" >/dev/null 2>&1
}
make() { cmake --build "$work/build-$1" ${2:+--target "$2"} >/dev/null; }

case $what in
    tinyxml2)
        configure tinyxml2 -DBUILD_SHARED_LIBS=OFF -Dtinyxml2_BUILD_TESTING=OFF
        make tinyxml2
        cmake --install "$work/build-tinyxml2" >/dev/null ;;
    png)
        # Debian's zlib source leaves out the Windows resource script its DLL
        # needs: only the static library is built, and installed by hand.
        configure zlib
        make zlib zlibstatic
        mkdir -p "$prefix/include" "$prefix/lib"
        cp "$work/source/zlib/zlib.h" "$work/build-zlib/zconf.h" "$prefix/include/"
        cp "$work/build-zlib/libzlibstatic.a" "$prefix/lib/libz.a"
        configure libpng1.6 -DPNG_SHARED=OFF -DPNG_STATIC=ON -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF \
            -DZLIB_INCLUDE_DIR="$prefix/include" -DZLIB_LIBRARY="$prefix/lib/libz.a"
        make libpng1.6
        cmake --install "$work/build-libpng1.6" >/dev/null ;;
esac
echo "$what for mingw-w64: done"
