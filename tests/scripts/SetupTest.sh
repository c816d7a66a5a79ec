#!/usr/bin/env bash
# Tests of scripts/setup.sh: which packages count as missing, without asking or changing this machine.
set -euo pipefail
cd "$1"
# shellcheck source=scripts/setup.sh
source scripts/setup.sh

failures=0
check() {
    local expected=$1 line=$2 actual=missing
    if is_met "$line"; then
        actual=met
    fi
    if [[ $actual != "$expected" ]]; then
        printf 'FAILED: "%s" is %s, expected %s\n' "$line" "$actual" "$expected"
        failures=$((failures + 1))
    fi
}

installed_version=([g++]=4:12.2.0-3 [libheif1]=1.15.1-1 [cmake]=3.25.1-1)
check met "g++"
check missing "ninja-build"
check met "ninja-build | cmake"
check met "cmake | ninja-build"
check missing "ninja-build | ccache"
check met "libheif1 (<< 1.16)"
check missing "libheif1 (<< 1.15)"
check met "libheif-plugin-libde265 | libheif1 (<< 1.16)"
installed_version[libheif1]=1.19.7-1
check missing "libheif-plugin-libde265 | libheif1 (<< 1.16)"

# Comments, blank lines and trailing blanks are no packages.
list=$(mktemp)
trap 'rm -f "$list"' EXIT
printf '# a comment\n\ng++  \ncmake # why\na | b (<< 1)\n' >"$list"
if [[ $(dependencies "$list") != $'g++\ncmake\na | b (<< 1)' ]]; then
    printf 'FAILED: dependencies gave:\n%s\n' "$(dependencies "$list")"
    failures=$((failures + 1))
fi

# Every QML module that the window imports is installed by ./run alone.
imported=$(grep -rhoP --include='*.qml' '^import \KQt[\w.]*' Qorvane | sort -u)
[[ $imported == *QtQuick.Templates* ]] || { printf 'FAILED: the imports were not found\n' && failures=$((failures + 1)); }
for module in $imported; do
    package=qml6-module-$(tr '[:upper:].' '[:lower:]-' <<<"$module")
    if ! dependencies scripts/packages-run.txt | grep -qx "$package"; then
        printf 'FAILED: %s is not in scripts/packages-run.txt\n' "$package"
        failures=$((failures + 1))
    fi
done

# A complete machine: apt must not be asked at all.
apt_get() {
    printf 'FAILED: apt-get was called although nothing is missing\n'
    failures=$((failures + 1))
}
printf 'dpkg\nno-such-package-anywhere | bash\n' >"$list"
# shellcheck disable=SC2317 # looked for, not called
npm() { :; }
if command -v dpkg-query >/dev/null; then
    installed_version=()
    install_missing_packages "$list"
fi

exit $((failures > 0))
