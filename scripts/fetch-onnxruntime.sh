#!/bin/sh
# Fetches the inference runtime: one shared library and its C++ headers, into <destination>/lib and
# <destination>/include.
#
#   scripts/fetch-onnxruntime.sh [DESTINATION]
#
# DESTINATION is build/deps/onnxruntime in the source tree when not given. What is fetched is kept in
# ${QORVANE_DOWNLOAD_CACHE:-${XDG_CACHE_HOME:-~/.cache}/qorvane-build} too, so that several source trees download
# it once. Needs npm, and on Debian apt-get and dpkg-deb; no root rights, and nothing of the system is changed.
set -eu

# 1.27.0 is the newest release without a telemetry client: later ones open sockets and write files as soon as an
# environment object is made. The hash is the registry's own integrity value, written in hexadecimal.
version=1.27.0
package_sha512=404cc6c2bbcd060bf8b8f55d9db1ec3861b81ba4fdea676570523c68028f8cc53cc0e3e956870f5dbea4dd01a46996a0553bf61bd0679dba3a67725d5ebd5f43
# The headers are those of the first Debian release that has them. A newer library answers to older headers,
# never the other way round, so they must not be newer than the library.
header_suite=trixie
greatest_header_version=27

say() { printf 'onnxruntime: %s\n' "$*"; }
fail() {
    printf 'onnxruntime: %s\n' "$*" >&2
    exit 1
}

case "$(uname -m)" in
    x86_64 | amd64) architecture=x64 ;;
    aarch64 | arm64) architecture=arm64 ;;
    *) fail "there is no runtime library for the processor $(uname -m)." ;;
esac

source_root=$(CDPATH='' cd -- "$(dirname -- "$0")/.." && pwd)
destination=${1:-$source_root/build/deps/onnxruntime}
cache_root=${QORVANE_DOWNLOAD_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/qorvane-build}
cached=$cache_root/onnxruntime-$version-$architecture
stamp="$version $architecture"

# The stamp is written into a complete folder before that folder gets its name, so a folder with it is whole.
is_complete() {
    [ -f "$1/lib/libonnxruntime.so.1" ] && [ -f "$1/include/onnxruntime_cxx_api.h" ] \
        && [ "$(cat "$1/stamp" 2>/dev/null || true)" = "$stamp" ]
}

if is_complete "$destination"; then
    say "release $version is there: $destination"
    exit 0
fi

work=$(mktemp -d) || fail "no temporary folder can be made."
staged=
# shellcheck disable=SC2329 # called by the trap
clean_up() {
    rm -rf "$work"
    [ -z "$staged" ] || rm -rf "$staged"
}
trap clean_up EXIT
trap 'exit 1' HUP INT TERM

fetch_library() {
    command -v npm >/dev/null 2>&1 || fail "npm is needed to fetch the runtime library; install the package npm."
    say "downloading the runtime library, release $version (about 100 MB)"
    # The package's own scripts stay unrun: one of them would fetch accelerator libraries from elsewhere.
    (cd "$work" && npm pack --ignore-scripts --silent "onnxruntime-node@$version" >/dev/null) \
        || fail "npm could not download onnxruntime-node $version; is there a network connection?"
    archive=$work/onnxruntime-node-$version.tgz
    printf '%s  %s\n' "$package_sha512" "$archive" | sha512sum -c --status \
        || fail "the downloaded onnxruntime-node $version is not the one expected (its SHA-512 differs); nothing was kept."
    member=package/bin/napi-v6/linux/$architecture/libonnxruntime.so.1
    tar -xzf "$archive" -C "$work" "$member" || fail "the downloaded package holds no library for $architecture."
    mkdir -p "$work/result/lib"
    mv "$work/$member" "$work/result/lib/"
    chmod 644 "$work/result/lib/libonnxruntime.so.1"
}

# The address that this machine fetches its Debian packages from.
debian_mirror() {
    # shellcheck disable=SC2016 # apt's own fields
    apt-get indextargets --format '$(SITE)|$(RELEASE)|$(ORIGIN)' 'Created-By: Packages' 2>/dev/null \
        | awk -F'|' '$2 !~ /security/ && $1 !~ /security/ && ($3 == "Debian" || $1 ~ /debian/) { print $1; exit }'
}

# With lists and caches of its own, so that neither root rights nor a new entry in the machine's sources is needed.
download_headers_of_suite() {
    mirror=${QORVANE_DEBIAN_MIRROR:-$(debian_mirror)}
    [ -n "$mirror" ] || fail "no Debian mirror is configured here: install libonnxruntime-dev, or name a mirror in QORVANE_DEBIAN_MIRROR."
    keyring=/usr/share/keyrings/debian-archive-keyring.gpg
    [ -f "$keyring" ] || fail "the package debian-archive-keyring is needed to verify the headers."
    apt_root=$work/apt
    mkdir -p "$apt_root/lists/partial" "$apt_root/cache/archives/partial"
    : >"$apt_root/status"
    printf 'Types: deb\nURIs: %s\nSuites: %s\nComponents: main\nSigned-By: %s\n' \
        "$mirror" "$header_suite" "$keyring" >"$apt_root/debian.sources"
    set -- -q -o Dir::Etc::SourceList="$apt_root/debian.sources" -o Dir::Etc::SourceParts=- \
        -o Dir::State::Lists="$apt_root/lists" -o Dir::State::status="$apt_root/status" -o Dir::Cache="$apt_root/cache" \
        -o Acquire::Languages=none -o APT::Sandbox::User=root
    {
        apt-get "$@" update && apt-get "$@" download "libonnxruntime-dev/$header_suite"
    } >"$work/apt.log" 2>&1 || {
        cat "$work/apt.log" >&2
        fail "the package libonnxruntime-dev could not be downloaded."
    }
}

fetch_headers() {
    mkdir -p "$work/result/include"
    if [ -f /usr/include/onnxruntime/onnxruntime_cxx_api.h ]; then
        say "taking the headers of the installed libonnxruntime-dev"
        cp /usr/include/onnxruntime/*.h "$work/result/include/"
    else
        for tool in apt-get dpkg-deb; do
            command -v "$tool" >/dev/null 2>&1 \
                || fail "the runtime's headers are missing: install your distribution's development package of it (libonnxruntime-dev)."
        done
        say "downloading the headers (about 100 kB)"
        cd "$work"
        apt-get -q download libonnxruntime-dev >/dev/null 2>&1 || download_headers_of_suite
        for package in "$work"/libonnxruntime-dev_*.deb; do
            dpkg-deb -x "$package" "$work/headers" || fail "the downloaded libonnxruntime-dev can't be unpacked."
        done
        cp "$work"/headers/usr/include/onnxruntime/*.h "$work/result/include/"
    fi
    found=$(sed -n 's/^#define ORT_API_VERSION \([0-9][0-9]*\).*/\1/p' "$work/result/include/onnxruntime_c_api.h")
    [ "${found:-$((greatest_header_version + 1))}" -le "$greatest_header_version" ] \
        || fail "the headers found (version ${found:-unknown}) are newer than the runtime library $version."
}

# install_tree FROM TO: TO appears whole or not at all. A folder that this script didn't make is left alone.
install_tree() {
    if [ -d "$2" ] && [ ! -f "$2/stamp" ] && [ -n "$(ls -A "$2")" ]; then
        fail "$2 holds other files; name an empty or a new folder."
    fi
    mkdir -p "$(dirname -- "$2")" || fail "the folder $(dirname -- "$2") can't be made."
    staged=$2.partial.$$
    rm -rf "$staged"
    cp -R "$1" "$staged" || fail "the runtime can't be written to $2; is the disk full?"
    rm -rf "$2"
    mv "$staged" "$2"
    staged=
}

mkdir -p "$cache_root" || fail "the folder $cache_root can't be made."
# Two source trees set up at once wait for one download.
exec 9>"$cache_root/lock"
if command -v flock >/dev/null 2>&1; then
    flock 9
fi
if ! is_complete "$cached"; then
    fetch_library
    fetch_headers
    printf '%s\n' "$stamp" >"$work/result/stamp"
    install_tree "$work/result" "$cached"
fi
install_tree "$cached" "$destination"
say "release $version installed: $destination"
