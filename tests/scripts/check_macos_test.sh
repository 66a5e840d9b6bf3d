#!/usr/bin/env bash
# scripts/check-macos passes the program's own files and fails a scratch copy
# with a wrong Apple call, in C++ and in Objective-C++. Skipped (77) without
# Apple's headers.
set -uo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
headers=${LOADWARDEN_APPLE_HEADERS:-$root/../shared/macos-sdk}
if [ ! -d "$headers/libc" ]; then
    echo "skipped: no Apple headers at $headers"
    exit 77
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0

# expect STATUS WORDS FILE [COPY]: the check of FILE (or of COPY in its
# place) ends with STATUS and, when it fails, says WORDS.
expect() {
    local want=$1 words=$2 file=$3 copy=${4:-}
    local output status=0
    if [ -n "$copy" ]; then
        output=$("$root/scripts/check-macos" --only "$file" --source "$copy" 2>&1) || status=$?
    else
        output=$("$root/scripts/check-macos" --only "$file" 2>&1) || status=$?
    fi
    if { [ "$want" = pass ] && [ $status -ne 0 ]; } ||
        { [ "$want" = fail ] && { [ $status -eq 0 ] || ! grep -qF -- "$words" <<<"$output"; }; }; then
        echo "FAILED: expected $file${copy:+ as $copy} to $want${words:+ saying '$words'}:"
        echo "$output"
        failures=$((failures + 1))
    fi
}

# misspell FILE FROM TO: a scratch copy of FILE with one call changed.
misspell() {
    local copy
    copy="$scratch/$(basename "$1")"
    sed "s/$2/$3/" "$root/$1" >"$copy"
    if cmp -s "$root/$1" "$copy"; then
        echo "FAILED: $2 is not in $1" >&2
        exit 1
    fi
    echo "$copy"
}

processes=app/sampling/darwin/darwin_processes.cpp
expect pass "" $processes
expect fail "PROC_PIDTBSDINF0" $processes "$(misspell $processes PROC_PIDTBSDINFO PROC_PIDTBSDINF0)"
# Version 6 of the resource usage is not in the macOS 12 headers.
expect fail "rusage_info_v6" $processes "$(misspell $processes 'rusage_info_v4 usage{}' 'rusage_info_v6 usage{}')"

applications=app/control/darwin/applications.mm
expect pass "" $applications
expect fail "forceTerminated" $applications "$(misspell $applications 'app forceTerminate' 'app forceTerminated')"

echo "$((5 - failures)) passed, $failures failed"
[ $failures -eq 0 ]
