#!/usr/bin/env bash
# Whether every C++ file is formatted as .clang-format says. Exit code 77: no clang-format of the right version.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Releases break some lines differently. The tree is formatted with this one, Debian 12's.
version=14
for tool in clang-format-$version clang-format; do
    if command -v "$tool" >/dev/null && "$tool" --version | grep -q "version $version\."; then
        find Qorvane tools tests bench '(' -name '*.cpp' -o -name '*.h' ')' -print0 | xargs -0 -r "$tool" --dry-run --Werror
        exit 0
    fi
done
printf 'skipped: clang-format %s is not installed, and others format differently\n' "$version"
exit 77
