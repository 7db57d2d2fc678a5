#!/usr/bin/env bash
# What a provider sees of the data library: its two functions and nothing else. And who may need the libraries that it
# asks the kernel and devices with: it alone, so that a machine which has another data library needs neither.
# Usage: check-data-library.sh DATA-LIBRARY OTHER-LIBRARY...
set -euo pipefail
library=$1
shift
bad=0

same() { # file, what, expected, found
    [ "$3" == "$4" ] && return
    bad=1
    printf '%s: %s\nexpected:\n%s\nfound:\n%s\n' "$1" "$2" "$3" "$4" >&2
}

needed() { readelf --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort; }

asking='^lib(udev\.so\.1|sgutils2(-[0-9.]+)?\.so\.[0-9]+)$'
# The language's libraries, POSIX threads, and the run time of a sanitizer build.
language='^(libstdc\+\+\.so\.6|libgcc_s\.so\.1|libm\.so\.6|libc\.so\.6|libpthread\.so\.0|ld-linux.*|lib(a|ub|t)san\.so\..*)$'

same "$library" "exported symbols" "$(printf '%s\n' CreateSasLists UpdateSasData)" \
    "$(nm --dynamic --defined-only "$library" | awk '{print $NF}' | sort)"
same "$library" "libraries it asks with" "2" "$(needed "$library" | grep -cE "$asking" || true)"
same "$library" "other libraries" "libKDVLogger.so" "$(needed "$library" | grep -vE "$asking|$language" || true)"
for other in "$@"; do
    [ -s "$other" ] || { echo "$other: not there" >&2; exit 1; }
    same "$other" "libraries that only the data library may need" "" "$(needed "$other" | grep -E 'udev|sgutils' || true)"
done
exit $bad
