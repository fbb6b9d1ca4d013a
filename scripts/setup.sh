# shellcheck shell=bash
# Shared by ./run, ./test and scripts/package: installs what packages.txt lists for the given uses.

# install_packages USE…: the packages of these uses that are not installed yet.
install_packages() {
    local wanted missing=() package
    wanted=$(awk -v uses=" $* " '!/^#/ && NF == 2 && index(uses, " " $2 " ") { print $1 }' packages.txt)
    if ! command -v apt-get >/dev/null; then
        echo "This system has no apt-get. Install the equivalents of these Debian 12 packages yourself:" >&2
        echo "${wanted//$'\n'/ }" >&2
        return 0
    fi
    for package in $wanted; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and only root can install them: ${missing[*]}" >&2
            return 1
        fi
        if ! sudo -n true 2>/dev/null; then
            echo "These packages are missing; this command asks nothing, so install them first:" >&2
            echo "  sudo apt-get install --no-install-recommends ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo -n)
    fi
    echo "Installing ${#missing[@]} packages: ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2 &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends -o Dpkg::Use-Pty=0 "${missing[@]}" >&2 </dev/null
}

# build_preset PRESET [TARGET…]: configures and builds; quiet when there is nothing to do.
build_preset() {
    local preset=$1 log targets=()
    shift
    [ $# -gt 0 ] && targets=(--target "$@")
    mkdir -p "build/$preset"
    log=build/$preset/configure.log
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
    cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
}
