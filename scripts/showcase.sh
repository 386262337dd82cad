#!/usr/bin/env bash
# Builds libzk64.so and runs the showcase program on its built-in example.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh linux
cmake --preset linux >/dev/null
cmake --build --preset linux --target zk64_showcase
echo
build/linux/bin/zk64_showcase
