# What the commands in this folder share; sourced, never run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

say() { printf '%s\n' "$*" >&2; }

# missing_packages LIST ...
missing_packages() {
    local package
    grep -hv '^#' "$@" | while read -r package; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || echo "$package"
    done
}

# ensure_packages [LIST ...]: installs what is missing of the lists; of the Linux program's unless some are named.
ensure_packages() {
    local missing sudo=()
    [ $# -gt 0 ] || set -- packaging/linux/debian-packages.txt
    command -v apt-get >/dev/null || { say "No apt-get here: install the packages of $* by hand."; return; }
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    [ "$(id -u)" = 0 ] || sudo=(sudo)
    # shellcheck disable=SC2086  # one word a package is wanted
    say "Installing:" $missing
    "${sudo[@]}" apt-get update -q >&2
    # shellcheck disable=SC2086  # one word a package is wanted
    "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing >&2
}

# build PRESET [TARGET ...]
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >&2 || return 1
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
