#!/usr/bin/env bash
# Installs the packages with dpkg below a private root, with the machine's packages listed as installed, uses them, and
# purges them. Nothing may remain.
. "$(dirname -- "$0")/support.sh"
need dpkg
((EUID == 0)) || skip "dpkg installs for root only"

root=$WORK/dpkg
fresh "$root/var/lib/dpkg/info"
mkdir -p -- "$root/var/lib/dpkg/updates" "$root/var/log"
# The list of the machine's packages, so that dpkg really checks the dependencies.
awk -v RS= -v ORS='\n\n' '!/^Package: (lib)?orvoplugin/' /var/lib/dpkg/status >"$root/var/lib/dpkg/status"
on_root() { dpkg --root="$root" --log=/dev/null --no-triggers "$@" 2> >(grep -v 'files list file for package' >&2); }
files() { (cd -- "$root" && find . -mindepth 1 -path ./var -prune -o -print | sort); }

runtime=liborvoplugin$RELEASE
packages=("$runtime" liborvoplugin-dev)
! ((TOOL)) || packages+=(orvoplugin)

demand_part "$(refused on_root -i "$WORK/debs/liborvoplugin-dev_"*.deb)" "dependency problems"
on_root --purge liborvoplugin-dev >/dev/null
on_root -i "$WORK/debs"/*.deb >/dev/null
for package in "${packages[@]}"; do
    demand_part "$(dpkg-query --admindir="$root/var/lib/dpkg" -W -f '${Status}\n' "$package")" "install ok"
done
demand_part "$(files)" "liborvoplugin.so.$RELEASE.${VERSION#*.}"
if ((TOOL)); then
    demand_part "$("$root/usr/bin/orvoplugin" --version)" "$VERSION"
fi

demand_part "$(refused on_root --remove "$runtime")" "dependency problems"
on_root --purge "${packages[@]}" >/dev/null
left=$(files)$(find "$root/var/lib/dpkg/info" -name '*orvo*')$(grep '^Package:.*orvo' "$root/var/lib/dpkg/status" || true)
[[ -z $left ]] || fail "this stayed behind:"$'\n'"$left"
