# shellcheck shell=bash
# Functions that the scripts share. Sourced, never run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root" || exit 1

apt_lock_timeout_s=300

say() { printf '%s\n' "$*" >&2; }

# missing_packages FILE ...: prints the packages in the lists that are not installed.
missing_packages() {
    local package
    grep -hv '^#' "$@" | sort -u | while read -r package; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || echo "$package"
    done
}

apt_get() {
    local sudo=()
    [ "$(id -u)" = 0 ] || sudo=(sudo)
    "${sudo[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive \
        apt-get -q -o DPkg::Lock::Timeout=$apt_lock_timeout_s "$@"
}

# Retries while another process holds the lock of the package lists. DPkg::Lock::Timeout does not cover that lock.
update_package_lists() {
    local output deadline=$((SECONDS + apt_lock_timeout_s))
    until output=$(apt_get update 2>&1); do
        if [[ $output != *"Could not get lock"* ]] || [ $SECONDS -ge $deadline ]; then
            say "$output"
            return 1
        fi
        sleep 1
    done
}

# ensure_packages LIST ...: installs the missing packages of tools/packages/LIST.txt.
ensure_packages() {
    local lists=("${@/#/tools/packages/}") missing
    lists=("${lists[@]/%/.txt}")
    if ! command -v apt-get >/dev/null; then
        say "apt-get is not available. Install the packages of ${lists[*]} by hand."
        return
    fi
    mapfile -t missing < <(missing_packages "${lists[@]}")
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing: ${missing[*]}"
    update_package_lists
    apt_get install -y --no-install-recommends "${missing[@]}" >&2
}

# build PRESET [TARGET ...]
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >&2 || return 1
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
