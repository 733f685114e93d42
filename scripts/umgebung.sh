# shellcheck shell=bash
# To be sourced: what the scripts of this folder share. Installs Debian packages that are missing, and says so.

# A compiler cache is used where there is one, unless the environment names another. With these words it keeps
# precompiled headers. Its folder is named for the tests that build with a home of their own.
if [[ -z ${CMAKE_CXX_COMPILER_LAUNCHER-} ]] && zwischenspeicher=$(ccache --get-config cache_dir 2>/dev/null) &&
    mkdir -p -- "$zwischenspeicher" 2>/dev/null && [[ -w $zwischenspeicher ]]; then
    export CCACHE_DIR=$zwischenspeicher
    export CMAKE_CXX_COMPILER_LAUNCHER="env;CCACHE_SLOPPINESS=pch_defines,time_macros;ccache"
fi

# brauche_pakete <command>:<package>...
# Makes sure that each command is there, and installs its package when it is not.
brauche_pakete() {
    local paar fehlende=()
    for paar in "$@"; do
        command -v "${paar%%:*}" >/dev/null || fehlende+=("${paar#*:}")
    done
    installiere_pakete "${fehlende[@]}"
}

# wuensche_pakete <command>:<package>...
# The same for commands that tests do without when they are not to be had: they are then skipped, and say so.
wuensche_pakete() {
    local paar
    for paar in "$@"; do
        (brauche_pakete "$paar") || printf 'Tests that need %s are skipped.\n' "${paar%%:*}" >&2
    done
}

# Clang, with the runtime libraries of its sanitizers and its fuzzer, which Debian packs apart.
brauche_clang() {
    brauche_pakete clang++:clang
    clang++ -fsanitize=fuzzer,address,undefined -x c++ -o /dev/null - 2>/dev/null <<'EOF' || installiere_pakete libclang-rt-dev
extern "C" int LLVMFuzzerTestOneInput(const unsigned char*, decltype(sizeof 0)) { return 0; }
EOF
}

# brauche_bibliotheken <package>...
# The same for packages that bring no command.
brauche_bibliotheken() {
    local paket fehlende=()
    for paket in "$@"; do
        ist_installiert "$paket" || fehlende+=("$paket")
    done
    installiere_pakete "${fehlende[@]}"
}

ist_installiert() {
    dpkg -s "$1" 2>/dev/null | grep -q '^Status: .* installed$'
}

# installiere_pakete [<package>...]
# Ends the script with status 3, and says what to install, when it cannot be done from here.
installiere_pakete() {
    (($#)) || return 0
    local als_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || verlange_pakete "$@"
        als_root=(sudo)
    fi
    command -v apt-get >/dev/null || verlange_pakete "$@"
    printf 'Installing what is missing: %s\n' "$*" >&2
    if ! "${als_root[@]}" apt-get update -qq >&2 ||
        ! "${als_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "$@" >&2; then
        verlange_pakete "$@"
    fi
}

verlange_pakete() {
    printf 'Missing packages: %s\nInstall them as root, then start again:\n    apt-get install %s\n' "$*" "$*" >&2
    exit 3
}
