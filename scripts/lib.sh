# Sourced by the scripts beside it: packages, configuring and building.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

packages_build="g++ cmake ninja-build ccache qtbase5-dev qttools5-dev qttools5-dev-tools
    libqt5svg5 libsqlite3-dev libspdlog-dev libfmt-dev libboost-dev rapidjson-dev
    pkg-config librtmidi-dev libjack-jackd2-dev liblo-dev libvulkan-dev qtmultimedia5-dev libqt5multimedia5-plugins
    fonts-noto-core fonts-noto-cjk"
packages_test="libgtest-dev python3 liblo-tools jackd2 mesa-vulkan-drivers
    pulseaudio pulseaudio-utils xvfb xdotool x11-utils x11-xkb-utils at-spi2-core python3-pyatspi dbus-daemon
    etcd-server etcd-client openssl"
packages_bench="libbenchmark-dev python3 git"
packages_plots="gnuplot-nox python3"
packages_clang="clang llvm libclang-rt-14-dev"
packages_package="chrpath file gzip lintian python3"
packages_windows="g++-mingw-w64-x86-64-posix dpkg-dev make tcl"
packages_wine="wine64 fontconfig fonts-wine xvfb python3"
packages_installer="nsis unzip zip"
packages_abi="abigail-tools"
packages_check="clang clang-format clang-tidy git libbenchmark-dev python3"
packages_docs="doxygen python3"
packages_fresh="git debootstrap xvfb xdotool util-linux"

fail() {
    echo "$(basename "$0"): $1" >&2
    exit "${2:-1}"
}

# need_packages GROUP...: installs what is missing of what building needs, and of the groups.
need_packages() {
    local group list=$packages_build
    for group in "$@"; do
        local name=packages_$group
        list+=" ${!name}"
    done
    install_missing "$list"
}

# install_missing LIST: installs those packages of the list that are not there.
install_missing() {
    local list=$1 missing=() package installed as_root=()
    command -v dpkg-query >/dev/null || {
        echo "no dpkg here: the needed libraries are taken as installed" >&2
        return 0
    }
    # JACK's two implementations exclude each other: the one that is there is the one that is used.
    if dpkg-query -W -f '${Status}' libjack0 2>/dev/null | grep -q '^install ok installed'; then
        list=${list/libjack-jackd2-dev/libjack-dev} list=${list/jackd2/jackd1}
    fi
    # It fails when it does not know one of them.
    # shellcheck disable=SC2086
    installed=" $(dpkg-query -W -f '${Status}/${Package} ' $list 2>/dev/null || true) "
    for package in $list; do
        [[ $installed == *"install ok installed/$package "* ]] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "please install as root: ${missing[*]}"
        as_root=(sudo)
    fi
    echo "installing: ${missing[*]}" >&2
    "${as_root[@]}" apt-get -qq update >&2
    # What the user has stays: rather nothing is installed than something removed.
    local command=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-remove
        --no-install-recommends "${missing[@]}")
    if [ -t 2 ]; then
        "${command[@]}" >&2 || fail "the packages above could not be installed"
    else
        quietly "installing the packages above" "${command[@]}"
    fi
}

# quietly WHAT COMMAND...: says nothing when all goes well.
quietly() {
    local what=$1 log
    shift
    log=$(mktemp)
    "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "$what failed"
    }
    rm -f "$log"
}

configure() {
    echo "configuring $1" >&2
    quietly "configuring $1" cmake --preset "$1" -DMIVO_WERROR="${MIVO_WERROR:-OFF}"
}

# build DIR [TARGET...]: shows ninja's own progress on a terminal, else a line each half minute.
build() (
    local dir=$1 log status=0
    shift
    local command=(cmake --build "$dir" ${1:+--target "$@"})
    if [ -t 2 ]; then
        "${command[@]}" >&2 || fail "building failed"
        return 0
    fi
    log=$(mktemp)
    "${command[@]}" >"$log" 2>&1 &
    local builder=$! waited=0
    # In the background it ignores Ctrl+C.
    trap 'kill "$builder"; wait "$builder"; rm -f "$log"; exit 130' INT TERM
    while kill -0 "$builder" 2>/dev/null; do
        sleep 1
        if ((++waited % 30 == 0)); then
            echo "building $(basename "$dir"): $(grep -oE '^\[[0-9]+/[0-9]+\]' "$log" | tail -n 1)" >&2
        fi
    done
    wait "$builder" || status=$?
    [ $status -eq 0 ] || {
        cat "$log" >&2
        rm -f "$log"
        fail "building $(basename "$dir") failed"
    }
    rm -f "$log"
)

# configure_and_build PRESET [TARGET...]: configures once, and again when MIVO_WERROR asks for
# another value. The caller stays in its folder.
configure_and_build() (
    local preset=$1 werror=${MIVO_WERROR:-OFF}
    shift
    local dir=$root/build/$preset
    cd "$root"
    if [ ! -f "$dir/build.ninja" ] || ! grep -q "^MIVO_WERROR:BOOL=$werror\$" "$dir/CMakeCache.txt"; then
        configure "$preset"
        echo "building $preset: the first time takes about ten minutes on two cores" >&2
    fi
    build "$dir" "$@"
)
