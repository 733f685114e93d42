# shellcheck shell=bash
# Sourced by the scripts of this folder. Their paths come from the test's environment.
set -euo pipefail
export LC_ALL=C
: "${WORK:?}" "${BUILD:?}" "${SOURCE:?}" "${LIBDIR:?}" "${VERSION:?}" "${RELEASE:?}" # never a folder below the root by accident
unset CDPATH DESTDIR orvoplugin_DIR orvoplugin_ROOT CMAKE_PREFIX_PATH PKG_CONFIG_PATH PKG_CONFIG_LIBDIR LD_LIBRARY_PATH

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Ends a test that this machine cannot run.
skip() {
    printf 'SKIPPED: %s\n' "$*"
    exit 77
}

# need <command>... : skips the test if one is missing
need() {
    local command
    for command in "$@"; do
        command -v "$command" >/dev/null || skip "$command is not installed"
    done
}

# demand <text> <line>... : fails unless each line is in the text
demand() {
    local text=$1 line
    shift
    for line in "$@"; do
        grep -qxF -- "$line" <<<"$text" || fail "no line '$line' in:"$'\n'"$text"
    done
}

# demand_part <text> <part>... : the same for parts of lines
demand_part() {
    local text=$1 part
    shift
    for part in "$@"; do
        grep -qF -- "$part" <<<"$text" || fail "no '$part' in:"$'\n'"$text"
    done
}

# refused <command>... : fails unless the command fails; prints its output
refused() {
    local text
    if text=$("$@" 2>&1); then
        fail "'$*' should have failed, and said:"$'\n'"$text" >&2
    fi
    printf '%s\n' "$text"
}

# fresh <directory>: makes an empty directory
fresh() {
    rm -rf -- "$1"
    mkdir -p -- "$1"
}

# configure <source> <build> <prefix> [<CMake option>...]
configure() {
    "$CMAKE" -S "$1" -B "$2" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$3" \
        -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF "${@:4}"
}

# demand_service <directory of the libraries> <client> <plugin>
# Runs the client with a home directory that holds the plugin.
demand_service() {
    local home
    home=$(dirname -- "$2")/home
    fresh "$home/plugins"
    cp -- "$3" "$home/plugins/libwohngeld.dylib"
    demand "$(LD_LIBRARY_PATH=$1 "$2" "$home")" \
        "home: $home" "features: 1" "mapped in use: 1" "mapped after: 0"
}
