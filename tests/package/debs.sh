#!/usr/bin/env bash
# Makes the Debian packages under a strict umask, and unpacks them.
. "$(dirname -- "$0")/support.sh"
need dpkg-deb dpkg

umask 077
fresh "$WORK/debs"
fresh "$WORK/root"
"$CPACK" --config "$BUILD/CPackConfig.cmake" -B "$WORK/debs" >"$WORK/cpack.log" || fail "cpack: $(<"$WORK/cpack.log")"
rm -rf -- "$WORK/debs/_CPack_Packages"
architecture=$(dpkg --print-architecture)
packages=(liborvoplugin"$RELEASE" liborvoplugin-dev)
! ((TOOL)) || packages+=(orvoplugin)
for package in "${packages[@]}"; do
    dpkg-deb -x "$WORK/debs/${package}_${VERSION}_${architecture}.deb" "$WORK/root"
done
if ((TOOL)); then
    demand_part "$("$WORK/root/usr/bin/orvoplugin" --version)" "$VERSION"
fi
