#!/usr/bin/env bash
# What a server sees of the provider library: the four entry points and nothing else, no library besides the platform's
# and the language's, and a library that stays mapped.
set -euo pipefail
library=$1
bad=0

same() { # what, expected, found
    [ "$2" == "$3" ] && return
    bad=1
    printf '%s: %s\nexpected:\n%s\nfound:\n%s\n' "$library" "$1" "$2" "$3" >&2
}

same "exported symbols" \
    "$(printf '_Generic_Create_%sMI\n' Association Indication Instance Method)" \
    "$(nm --dynamic --defined-only "$library" | awk '{print $NF}' | sort)"

dynamic=$(readelf --dynamic --wide "$library")
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | sort)
same "platform libraries" \
    "$(printf 'libKDV%s.so\n' CmpiCpp Common Logger SasHbaMRA)" \
    "$(grep '^libKDV' <<<"$needed")"
# The language's libraries, POSIX threads, and the run time of a sanitizer build.
same "other libraries" "" \
    "$(grep -vE '^(libKDV.*|libstdc\+\+\.so\.6|libgcc_s\.so\.1|libm\.so\.6|libc\.so\.6|libpthread\.so\.0|ld-linux.*|lib(a|ub|t)san\.so\..*)$' <<<"$needed" || true)"
same "stays mapped" "1" "$(grep -c NODELETE <<<"$dynamic" || true)"
same "looks for libraries by RUNPATH" "0" "$(grep -c '(RPATH)' <<<"$dynamic" || true)"
exit $bad
