# Which Debian packages what needs, and how they are installed. To be sourced.

packages_to_build=(
    g++ cmake ninja-build pkg-config ccache
    qt6-base-dev qt6-svg-dev libxcb1-dev libcurl4-openssl-dev libssl-dev libicu-dev libsimdjson-dev nlohmann-json3-dev
)
# What the program itself uses of a desktop that is there, beyond the libraries it links.
packages_to_run=(qt6-qpa-plugins fonts-dejavu-core ca-certificates)
# A desktop on a virtual display: X server, session bus, window manager, panel, notifications, accessibility.
packages_for_virtual_desktop=(
    xvfb dbus openbox xfce4-panel dunst at-spi2-core python3 python3-pyatspi gir1.2-atspi-2.0 xdotool x11-utils
    imagemagick libglib2.0-bin adwaita-icon-theme procps
)
# The private internet: namespaces, servers and certificates.
packages_for_lab=(python3 iproute2 util-linux nginx-light openssl curl ca-certificates libc-bin)
# Among them GTK's platform theme for Qt, to be kept out, and a manager of X settings, to be followed.
packages_to_test=(libgtest-dev libgmock-dev librapidcheck-dev strace qt6-gtk-platformtheme xsettingsd)
packages_to_sanitize=(clang-19 libclang-rt-19-dev libfuzzer-19-dev)
packages_for_newcomer=(debootstrap git util-linux)
packages_to_lint=(clang-format-19 clang-tidy-19 clang-19)

# install_packages PACKAGE...: says what is missing, installs it, and says nothing when nothing is.
install_packages() {
    local package missing=()
    for package in $(printf '%s\n' "$@" | sort -u); do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    printf 'These Debian packages are missing and will be installed: %s\n' "${missing[*]}"

    local as_root=()
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            echo "Installing them takes root or sudo, and neither is here. Install them and run this again." >&2
            return 1
        fi
        as_root=(sudo)
    fi
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends \
        -o Dpkg::Use-Pty=0 "${missing[@]}" >/dev/null
}

# build_preset PRESET TARGET... -- CMAKE_OPTION...: configures and builds, quietly unless something is wrong.
build_preset() {
    local preset=$1 targets=() log
    shift
    while (($#)) && [[ $1 != -- ]]; do targets+=(--target "$1") && shift; done
    shift || true
    log=$(mktemp)
    if ! cmake --preset "$preset" "$@" >"$log" 2>&1 || ! cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
