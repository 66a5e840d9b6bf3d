#!/usr/bin/env bash
# Makes the .deb of the build tree it is given (BUILD VERSION), installs it
# with apt as a user would, runs what it installed and finds its manuals,
# completions, desktop entry, icons and metainfo where the system looks for
# them, then purges it and finds nothing of it left. Skipped (77) where not
# root, where a tool is missing, where dpkg leaves manuals out, or where a
# loadwarden package is installed already: that one is left alone.
set -uo pipefail
build=$1
version=$2

skip() {
    echo "skipped: $*"
    exit 77
}
[ "$(id -u)" -eq 0 ] || skip "installing a package needs root"
for tool in apt-get dpkg-query cpack man bash fish zsh desktop-file-validate appstreamcli \
    systemd-analyze; do
    command -v "$tool" >/dev/null || skip "$tool is not installed"
done
# Slim system images have dpkg leave manuals out.
grep -rqs '^path-exclude.*/usr/share/man' /etc/dpkg/dpkg.cfg.d/ &&
    skip "dpkg here leaves manuals out (path-exclude in /etc/dpkg/dpkg.cfg.d)"
installed() { dpkg-query -W -f='${Status}' loadwarden 2>/dev/null | grep -q "install ok installed"; }
installed && skip "a loadwarden package is installed already"

scratch=$(mktemp -d)
cleanup() {
    installed && DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq loadwarden >/dev/null
    rm -rf "$scratch"
}
trap cleanup EXIT
failures=0
checks=0
# check WHAT COMMAND...: counts a check, and says WHAT failed with its output.
check() {
    local what=$1 output
    shift
    checks=$((checks + 1))
    if ! output=$("$@" 2>&1); then
        echo "FAILED: $what"
        [ -n "$output" ] && echo "$output"
        failures=$((failures + 1))
    fi
}

# The build's own package, quickly compressed: the release one is made by
# scripts/package.
if ! cpack --config "$build/CPackConfig.cmake" -B "$scratch" \
    -D CPACK_DEBIAN_COMPRESSION_TYPE=gzip >"$scratch/cpack.log" 2>&1; then
    cat "$scratch/cpack.log"
    exit 1
fi
if ! DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
    "$scratch"/loadwarden_"$version"_*.deb >"$scratch/install.log" 2>&1; then
    cat "$scratch/install.log"
    exit 1
fi
dpkg-query -L loadwarden >"$scratch/files"

check "the installed loadwarden says its version" \
    bash -c "[ \"\$(/usr/bin/loadwarden --version)\" = 'loadwarden $version' ]"
check "loadwarden snapshot runs" bash -c "/usr/bin/loadwarden snapshot --ticks 2 | grep -q '^Memory '"
check "loadwarden serve finds the program installed for it" \
    bash -c "/usr/bin/loadwarden serve --help | grep -q '^usage: loadwarden serve '"
home=$scratch/home
mkdir -p "$home" && mkdir -m 700 "$scratch/runtime"
# Still running after a few seconds, in its own home: timeout's 124.
check "Loadwarden runs without a display" bash -c "
    HOME='$home' XDG_RUNTIME_DIR='$scratch/runtime' QT_QPA_PLATFORM=offscreen \
        timeout 4 /usr/bin/Loadwarden >'$scratch/desktop.log' 2>&1
    status=\$?
    [ \$status -eq 124 ] || { echo \"it ended with \$status\"; cat '$scratch/desktop.log'; false; }"

check "man finds loadwarden(1)" \
    bash -c "[ \"\$(man -w loadwarden)\" = /usr/share/man/man1/loadwarden.1.gz ]"
check "man finds Loadwarden(1)" \
    bash -c "[ \"\$(man -w Loadwarden)\" = /usr/share/man/man1/Loadwarden.1.gz ]"
check "the manuals read without warnings" \
    bash -c "! { MANWIDTH=80 man --warnings loadwarden Loadwarden 2>&1 >/dev/null | grep .; }"

# Each shell finds the completion where it looks for it, with no help.
check "bash loads the completion on demand" bash -c "
    source /usr/share/bash-completion/bash_completion
    __load_completion loadwarden && COMP_WORDS=(loadwarden sn) COMP_CWORD=1 && _loadwarden
    [ \"\${COMPREPLY[*]}\" = snapshot ]"
check "fish completes a command" \
    bash -c "HOME='$home' fish -c \"complete -C'loadwarden sn'\" | grep -q '^snapshot'"
check "zsh has the completion on its function path" \
    zsh -fc '[[ -n ${^fpath}/_loadwarden(#qN) ]]'

# systemd finds the exporter's user unit and its program; the manual it
# names exists.
check "the user unit of loadwarden serve is sound" \
    systemd-analyze verify /usr/lib/systemd/user/loadwarden-serve.service

desktop=/usr/share/applications/io.loadwarden.Loadwarden.desktop
metainfo=/usr/share/metainfo/io.loadwarden.Loadwarden.metainfo.xml
check "the desktop entry is valid" desktop-file-validate "$desktop"
check "the desktop entry starts the installed program" grep -qx "Exec=Loadwarden" "$desktop"
check "the metainfo is valid" appstreamcli validate --no-net "$metainfo"
check "the newest release is this version" \
    bash -c "grep -m1 '<release ' '$metainfo' | grep -q 'version=\"$version\"'"
check "the changelog's newest entry is this version" \
    bash -c "zcat /usr/share/doc/loadwarden/changelog.gz | head -1 | grep -qF 'loadwarden ($version)'"
check "the copyright file is machine-readable" \
    grep -qx "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/" \
    /usr/share/doc/loadwarden/copyright
for icon in 48x48/apps/io.loadwarden.Loadwarden.png scalable/apps/io.loadwarden.Loadwarden.svg; do
    check "the icon $icon is in the hicolor theme" test -s "/usr/share/icons/hicolor/$icon"
done

if ! DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq loadwarden >"$scratch/purge.log" 2>&1; then
    cat "$scratch/purge.log"
    exit 1
fi
check "the package is gone" bash -c "! dpkg-query -W -f='\${Status}' loadwarden 2>/dev/null | grep -q installed"
# No file it installed, and no folder that no other package has.
check "nothing it installed is left" bash -c "! while read -r path; do
        if [ -f \"\$path\" ] || [ -L \"\$path\" ]; then
            echo \"\$path is left\"
        elif [ -d \"\$path\" ] && ! dpkg-query -S \"\$path\" >/dev/null 2>&1; then
            echo \"\$path is left\"
        fi
    done <'$scratch/files' | grep ."

echo "$((checks - failures)) passed, $failures failed"
[ $failures -eq 0 ]
