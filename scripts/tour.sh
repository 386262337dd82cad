#!/usr/bin/env bash
# Builds libzk64.so and the zk command, and runs zk's tour on its built-in
# defaults: this system, a PE image, the strings of zk itself, a system
# directory counted, the processes, and a noise picture (zk-noise.png here).
# zk's own executable is an ELF file on Linux, so the PE step reads a small
# Windows image kept in the repository.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh linux
cmake --preset linux >/dev/null
cmake --build --preset linux --target zk
echo
build/linux/bin/zk tour --pe tests/fuzz/pe-corpus/app-x86_64.exe --picture zk-noise.png
echo
echo "More: build/linux/bin/zk --help, and zk COMMAND --help for each command."
