# shellcheck shell=bash
# What ./run and ./test share: the packages, the inference runtime, the build. Sourced from the project's top folder.

setup_log=build/setup.log

# A bare machine has no locale set, and Qt's tools grumble about every file then.
if [[ $(locale charmap 2>/dev/null) != UTF-8 ]]; then
    export LC_ALL=C.UTF-8
fi

say() { printf '==> %s\n' "$*"; }
fail() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# The dependency lines of the given lists, without comments and blank lines.
dependencies() { sed -e 's/#.*//' -e 's/[[:space:]]*$//' -e '/^$/d' "$@"; }

# Dependency lines as people read them: the first name of each, all in one line.
package_names() { printf '%s\n' "$@" | sed 's/ .*//' | paste -s -d ' '; }

# Reads what dpkg knows of every package named in the given dependency lines into installed_version, in one call.
declare -A installed_version=()
read_installed_packages() {
    local names status package version
    mapfile -t names < <(printf '%s\n' "$@" | tr '|' '\n' | awk '{ print $1 }' | sort -u)
    while read -r status package version; do
        if [[ $status == installed ]]; then
            installed_version[$package]=$version
        fi
    done < <(dpkg-query -W -f '${db:Status-Status} ${Package} ${Version}\n' "${names[@]}" 2>/dev/null)
}

# Whether one dependency line ("a | b (<< 1)") is met by what is installed.
is_met() {
    local alternative name operator version alternatives
    IFS='|' read -ra alternatives <<<"$1"
    for alternative in "${alternatives[@]}"; do
        read -r name operator version <<<"${alternative//[()]/ }"
        [[ -n ${installed_version[$name]:-} ]] || continue
        [[ -z $operator ]] || dpkg --compare-versions "${installed_version[$name]}" "$operator" "$version" || continue
        return 0
    done
    return 1
}

# Runs a command as root: directly, or through sudo.
as_root() {
    if [[ $(id -u) -eq 0 ]]; then
        "$@"
    else
        sudo "$@"
    fi
}

# Runs a command whose output only matters when it fails.
logged() {
    if ! "$@" >>"$setup_log" 2>&1 </dev/null; then
        tail -n 25 "$setup_log" >&2
        fail "this failed (more in $setup_log): $*"
    fi
}

apt_get() { as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 "$@"; }

# Installs what the given lists name and the machine lacks. Without apt it can only show the lists.
install_missing_packages() {
    local line lines missing=()
    mapfile -t lines < <(dependencies "$@")
    # Any npm will do, not only Debian's.
    command -v npm >/dev/null || lines+=(npm)
    if ! command -v apt-get >/dev/null; then
        say "This machine has no apt-get. Qorvane needs the counterparts of these Debian packages:"
        package_names "${lines[@]}" | fold -s -w 100 | sed -e 's/^/      /' -e 's/ $//'
        return
    fi
    read_installed_packages "${lines[@]}"
    for line in "${lines[@]}"; do
        is_met "$line" || missing+=("$line")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    if [[ $(id -u) -ne 0 ]] && ! command -v sudo >/dev/null; then
        fail "packages are missing, and there is neither root nor sudo to install them. As root:
    apt-get satisfy --no-install-recommends$(printf " '%s'" "${missing[@]}")"
    fi
    say "Installing what is missing. This may take some minutes (details in $setup_log):"
    package_names "${missing[@]}" | fold -s -w 100 | sed -e 's/^/      /' -e 's/ $//'
    # A source that doesn't answer is no reason to stop: what is needed may be known already.
    apt_get update >>"$setup_log" 2>&1 </dev/null || say "apt-get update had troubles; going on with what is known."
    logged apt_get satisfy --no-install-recommends "${missing[@]}"
}

# Fetches the inference runtime; quick when it is there.
fetch_runtime() {
    [[ -x scripts/fetch-onnxruntime.sh ]] || return 0
    say "The inference runtime"
    scripts/fetch-onnxruntime.sh </dev/null || fail "the inference runtime could not be fetched"
}

# configure PRESET [CMAKE-OPTION...]: only when there is no configuration, the presets changed, or it was configured
# otherwise before; the build itself notices every other change.
configure() {
    # A file of our own: the build takes every touch of CMake's as a reason to configure once more.
    local preset=$1 stamp=build/$1/configured
    shift
    # Whoever configures by hand changes the cache behind the stamp.
    if [[ ! -f build/$preset/build.ninja || CMakePresets.json -nt $stamp || build/$preset/CMakeCache.txt -nt $stamp ||
        $(<"$stamp") != "$*" ]]; then
        say "Configuring ($preset)"
        logged cmake --preset "$preset" "$@"
        printf '%s\n' "$*" >"$stamp"
    fi
}

# build PRESET [TARGET...]: everything when no target is named.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    cmake --build --preset "$preset" ${1:+--target "$@"} </dev/null || fail "the build failed"
}
