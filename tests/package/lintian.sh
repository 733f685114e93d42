#!/usr/bin/env bash
# Debian's own check of packages.
. "$(dirname -- "$0")/support.sh"
need lintian

cd -- "$WORK/debs"
lintian --allow-root --fail-on error ./*.deb
