#!/usr/bin/env bash
# dynamisch.sh <library> <name>...: fails unless the library exports these names, and binds all symbols at once.
set -euo pipefail
export LC_ALL=C

library=$1
shift
expected=$(printf '%s\n' "$@" | sort)
exported=$(nm -D --defined-only "$library" | awk '{print $3}' | sort)
if [[ $exported != "$expected" ]]; then
    diff <(printf '%s\n' "$expected") <(printf '%s\n' "$exported") || true
    exit 1
fi
readelf -dW "$library" | grep -q 'Flags:.* NOW' || { echo "does not bind at once"; exit 1; }
! readelf -dW "$library" | grep 'NEEDED.*libm\.' || { echo "needs a library that it does not use"; exit 1; }
