#!/usr/bin/env bash
# Installs what is needed, builds the release and serves the default scenario: ./run.sh [--build-only] [host options]
set -euo pipefail
cd "$(dirname "$0")"

usage() {
    cat <<'TEXT'
Usage: ./run.sh [--build-only | --demo] [--scenario FILE | --live] [options of kdv-cimhost]

Installs what is missing, builds build/release and starts the object manager with the provider on the default
scenario (scenarios/default.json), listening on 127.0.0.1:5988. Ctrl-C ends it.

  --build-only       stop after the build
  --demo             play the default scenario's faults on one screen, each with its alert, and end
  --scenario FILE    serve another machine description (see docs/scenarios.md)
  --live             serve the SAS adapters of this machine (see docs/linux.md); as root it learns more of them
  --help             this text; "build/release/bin/kdv-cimhost --help" tells the options of the object manager
TEXT
}

build_only=
demo=
live=
scenario=${KDV_SAS_SCENARIO:-$PWD/scenarios/default.json}
options=()
while [ $# -gt 0 ]; do
    case $1 in
        --build-only) build_only=1 ;;
        --demo) demo=1 ;;
        --scenario)
            [ $# -ge 2 ] || { echo "run.sh: --scenario needs a file" >&2; exit 2; }
            scenario=$2; shift ;;
        --live) live=1 ;;
        --help|-h) usage; exit 0 ;;
        *) options+=("$1") ;;
    esac
    shift
done

tools/install-packages build
tools/build release
[ -n "$build_only" ] && exit 0

if [ -n "$live" ]; then
    [ -z "$demo" ] || { echo "run.sh: --demo plays the default scenario, not this machine" >&2; exit 2; }
    unset KDV_SAS_SCENARIO
    exec build/release/bin/kdv-cimhost "${options[@]}"
fi
[ -r "$scenario" ] || { echo "run.sh: cannot read the scenario $scenario" >&2; exit 1; }
export KDV_SAS_SCENARIO=$scenario
[ -n "$demo" ] && exec tools/demo build/release/bin
exec build/release/bin/kdv-cimhost "${options[@]}"
