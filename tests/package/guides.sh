#!/usr/bin/env bash
# The tool's package alone has complete guides: none of their links leads to a page of another package. In all packages
# together, no link is dead.
. "$(dirname -- "$0")/support.sh"
need python3

fresh "$WORK/guides/alone/prefix"
fresh "$WORK/guides/together"
dpkg-deb -x "$WORK/debs/orvoplugin_${VERSION}_$(dpkg --print-architecture).deb" "$WORK/guides/alone/prefix"
for page in operator check json glossary; do
    [[ -s $WORK/guides/alone/prefix/usr/share/doc/orvoplugin/docs/$page.md ]] || fail "there is no $page.md"
done
ln -s "$WORK/root" "$WORK/guides/together/prefix"
for pages in alone together; do
    PYTHONDONTWRITEBYTECODE=1 python3 "$SOURCE/tests/docs/links.py" installed "$WORK/guides/$pages"
done
