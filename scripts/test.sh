#!/usr/bin/env bash
# Builds the project and runs its test suite.
#
#   scripts/test.sh          the default build (RelWithDebInfo)
#   scripts/test.sh asan     the AddressSanitizer + UndefinedBehaviorSanitizer build
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset="${1:-default}"

bash scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" --parallel "$(nproc)"
