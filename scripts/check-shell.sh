#!/usr/bin/env bash
# Whether shellcheck is content with every shell script. Exit code 77: there is no shellcheck.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

command -v shellcheck >/dev/null || {
    printf 'skipped: shellcheck is not installed\n'
    exit 77
}
shellcheck -x run test .ci/run
find scripts tests -name '*.sh' -print0 | xargs -0 -r shellcheck -x
