#!/usr/bin/env bash
# The shared library must export exactly the C functions of the public header:
# every one of them, and nothing else.
set -euo pipefail
library=$1
header=$2

declared=$(grep -oE '\bzR?Exif[A-Za-z]+\(' "$header" | tr -d '(' | sort -u)
exported=$(nm -D --defined-only "$library" | awk '{print $3}' | { grep -vE "^(_init|_fini|_edata|_end|__bss_start)$" || true; } | sort -u)

stray=$(comm -13 <(echo "$declared") <(echo "$exported"))
if [ -n "$stray" ]; then
    echo "exported but not declared in the public header:" >&2
    echo "$stray" >&2
    exit 1
fi
missing=$(comm -23 <(echo "$declared") <(echo "$exported"))
if [ -n "$missing" ]; then
    echo "declared in the public header but not exported:" >&2
    echo "$missing" >&2
    exit 1
fi
echo "$(grep -c . <<<"$exported") exports, exactly those of the public header"
