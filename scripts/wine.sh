# Running Windows programs; source it after common.sh, do not run it.
# The 64-bit ones run under the machine's own wine64. Debian's wine32 does not install beside it, so that the 32-bit
# ones run inside a small i386 system in the user's cache folder, which is made once and used by every checkout.
# Everything that a run changes lies in the checkout's build folder: Wine's prefixes, which are copies of prepared ones in
# the cache folder, and where the 32-bit Wine finds its server. Two checkouts can therefore run at the same time.

wine_tree=$cache/wine32
wine_own=$project/build/wine
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES='mscoree,mshtml='

# alone COMMAND...: runs it while no other checkout runs a command this way. (What the command leaves running must not
# keep the lock, hence the closed descriptor.)
alone() {
    local status=0
    exec 9>"$cache/wine.lock"
    flock 9
    "$@" 9>&- || status=$?
    exec 9>&-
    return $status
}

# prepare_wine i686|x86_64: makes what is missing for programs of that width.
prepare_wine() {
    mkdir -p "$cache" "$wine_own"
    [ "$1" != i686 ] || alone make_wine_tree
    alone make_prefix "$1"
    [ -d "$(prefix "$1")" ] || cp -a "$(prepared_prefix "$1")" "$(prefix "$1")"
}

prefix() { echo "$wine_own/prefix-$1"; }
prepared_prefix() { echo "$cache/wine-prefix-$1"; }

# make_prefix i686|x86_64: the prefix that each checkout begins with.
make_prefix() {
    local made
    made=$(prepared_prefix "$1")
    [ ! -d "$made" ] || return 0
    rm -rf "$(prefix "$1")"
    # Text in whole pixels, as on Linux: what a user smooths is no matter of the library.
    with_wine "$1" sh -c 'wineboot --init &&
        wine reg add "HKCU\\Control Panel\\Desktop" /v FontSmoothing /d 0 /f && wineserver --wait' \
        >"$cache/wine-prefix.log" 2>&1 || { tail -n 15 "$cache/wine-prefix.log" >&2; die "Wine does not start"; }
    rm -rf "$made.new"
    cp -a "$(prefix "$1")" "$made.new"
    mv "$made.new" "$made"
}

# make_wine_tree: makes the i386 system from what the machine's own apt is set up to use.
make_wine_tree() {
    [ ! -e "$wine_tree/.complete" ] || return 0
    [ "$(id -u)" -eq 0 ] || die "only root can make the 32-bit system that the i686 tests run in"
    need_packages "${tree_packages[@]}"
    say "Making the 32-bit system (once; $wine_tree)"
    local release sources mirror log=$cache/wine32.log
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    sources=$(debian_sources "$release")
    [ -n "$sources" ] || { apt-get -q update >/dev/null && sources=$(debian_sources "$release"); }
    mirror=$(awk -v release="$release" '$2 == release && $3 == "main" { print $1; exit }' <<<"$sources")
    [ -n "$mirror" ] || die "apt has no package source for $release"
    # An attempt that was broken off may have left its own /proc there.
    ! mountpoint -q "$wine_tree/proc" || umount "$wine_tree/proc"
    rm -rf "$wine_tree"
    mkdir -p "$wine_tree"
    {
        fetch_proxies
        cat /usr/share/keyrings/debian-archive-keyring.gpg /etc/apt/trusted.gpg.d/*.gpg /etc/apt/keyrings/*.gpg \
            >"$cache/keys.gpg" 2>/dev/null || true
        debootstrap --arch=i386 --variant=minbase --include=ca-certificates --keyring="$cache/keys.gpg" \
            "$release" "$wine_tree" "$mirror" &&
            cp "$cache/keys.gpg" "$wine_tree/etc/apt/machine.gpg" &&
            sed -E 's/^/deb [signed-by=\/etc\/apt\/machine.gpg] /' <<<"$sources" >"$wine_tree/etc/apt/sources.list" &&
            apt-config dump Acquire | grep -v '^Acquire::IndexTargets' >"$wine_tree/etc/apt/apt.conf.d/00machine" &&
            { [ ! -e /etc/ssl/certs/ca-certificates.crt ] ||
                cp /etc/ssl/certs/ca-certificates.crt "$wine_tree/etc/ssl/certs/"; } &&
            # A mirror that is being renewed may lack one list for a while; what counts is whether the rest will do.
            { in_wine_tree apt-get -q update || true; } &&
            in_wine_tree env DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends \
                wine wine32 fonts-dejavu-core &&
            in_wine_tree apt-get clean
    } >"$log" 2>&1 || { tail -n 15 "$log" >&2; die "the 32-bit system could not be made; see the lines above"; }
    touch "$wine_tree/.complete"
}

# debian_sources RELEASE: "URI RELEASE COMPONENT" for each of Debian's own package sources that the machine uses.
debian_sources() {
    # shellcheck disable=SC2016  # the names in the format are apt's
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' |
        awk -v release="$1" '$2 == release || $2 == release "-updates" || $2 == release "-security"' | sort -u
}

# fetch_proxies: debootstrap fetches with wget, which knows apt's proxies by these names only.
fetch_proxies() {
    local scheme proxy
    for scheme in http https; do
        proxy=$(apt-config dump "Acquire::$scheme::Proxy" | sed -nE "s/^Acquire::$scheme::Proxy \"(.+)\";/\1/p")
        [ -z "$proxy" ] || [ "$proxy" = DIRECT ] || export "${scheme}_proxy=$proxy"
    done
}

# in_wine_tree COMMAND...: runs it inside the tree, in the project's folder (which is seen under its own path there, and
# whose own folder for temporary files is the tree's). The mounts are the command's own and end with it, and with the
# Wine server that it may leave for the next one. Where the root folder is no mount that could be made private, as in a
# chroot, the tree is made one.
in_wine_tree() {
    mkdir -p "$wine_tree$project" "$wine_own/tmp"
    unshare --mount --propagation unchanged sh -c '
        tree=$1 project=$2
        shift 2
        mount --make-rprivate / 2>/dev/null || {
            mountpoint -q "$tree" || mount --bind "$tree" "$tree"
            mount --make-private "$tree"
        }
        mount -t proc proc "$tree/proc" && mount --bind "$project/build/wine/tmp" "$tree/tmp" &&
            mount --bind "$project" "$tree$project" &&
            exec chroot "$tree" env -C "$project" HOME=/srv "$@"' sh "$wine_tree" "$project" "$@"
}

# with_wine i686|x86_64 COMMAND...: runs a command in whose environment `wine` runs programs of that width.
with_wine() {
    local width=$1
    shift
    if [ "$width" = i686 ]; then
        in_wine_tree env WINEPREFIX="$(prefix i686)" WINEARCH=win32 "$@"
    else
        WINEPREFIX=$(prefix x86_64) WINEARCH=win64 "$@"
    fi
}

# start_display: a screen that nobody sees, for programs that open windows; it ends with the script.
start_display() {
    local number
    number=$(mktemp)
    Xvfb -displayfd 6 -screen 0 1024x768x24 -nolisten tcp 6>"$number" >/dev/null 2>&1 &
    # shellcheck disable=SC2064  # this very process
    trap "kill $!" EXIT
    local tries
    for tries in {1..600}; do
        [ -s "$number" ] && break
        sleep 0.1
    done
    [ -s "$number" ] || die "Xvfb does not start"
    DISPLAY=:$(tr -d '[:space:]' <"$number")
    rm -f "$number"
    export DISPLAY
}
