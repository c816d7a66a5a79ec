#!/usr/bin/env bash
# Fetches freely licensed photographs to try Qorvane on, out of Debian packages that are unpacked, not installed:
#
#   scripts/fetch-demo-photographs.sh DESTINATION
#
# Each package's copyright file comes along and names the photographers. Needs apt-get and dpkg-deb; no root rights.
set -euo pipefail

# Package and the folder inside it. Small packages of real photographs: 15 and 12 of them, 62 MB to download.
sources=(
    "lomiri-wallpapers-16.04 usr/share/backgrounds"
    "mate-backgrounds usr/share/backgrounds/mate/nature"
)

destination=${1:?usage: fetch-demo-photographs.sh DESTINATION}
if [[ -f $destination/complete ]]; then
    exit 0
fi
if ! command -v apt-get >/dev/null || ! command -v dpkg-deb >/dev/null; then
    printf 'The demo photographs come in Debian packages, and this machine has no apt-get: name a folder of your own.\n' >&2
    exit 1
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
rm -rf "$destination"
mkdir -p "$destination"
destination=$(cd "$destination" && pwd)
for source in "${sources[@]}"; do
    read -r package folder <<<"$source"
    # As root, apt would hand the download to a user who may not write into the temporary folder.
    (cd "$work" && apt-get -q -o APT::Sandbox::User=root download "$package" </dev/null) >"$work/log" 2>&1 || {
        cat "$work/log" >&2
        printf 'The package %s could not be downloaded. Try "apt-get update", or name a folder of your own.\n' "$package" >&2
        exit 1
    }
    dpkg-deb -x "$work/$package"_*.deb "$work/$package"
    mkdir "$destination/$package"
    find "$work/$package/$folder" -name '*.jpg' -exec cp {} "$destination/$package/" \;
    cp "$work/$package/usr/share/doc/$package/copyright" "$destination/$package/copyright.txt"
done
# Written last: a folder with it is whole.
touch "$destination/complete"
