#!/usr/bin/env bash
# The tool's package alone holds the guides to it, and none of their links leads to a page that it does not hold. Of
# all packages together, no page has such a link.
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
