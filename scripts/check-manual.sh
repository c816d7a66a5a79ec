#!/usr/bin/env bash
# Whether mandoc is content with every manual page. Exit code 77: there is no mandoc.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

command -v mandoc >/dev/null || {
    printf 'skipped: mandoc is not installed\n'
    exit 77
}
find tools Qorvane -name '*.[1-8]' -print0 | xargs -0 mandoc -T lint -W warning
