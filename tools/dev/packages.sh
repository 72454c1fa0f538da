# shellcheck shell=bash
# The Debian packages that the verbs of ./dev need.

# To build, test and measure.
# shellcheck disable=SC2034  # read by the verbs
BUILD_PACKAGES=(
    g++ cmake ninja-build pkg-config python3
    libspdlog-dev libfmt-dev libgtest-dev libgmock-dev libbenchmark-dev
    libassimp-dev zlib1g-dev assimp-testmodels libstb-dev libcli11-dev
    libegl-dev libgl-dev libopengl-dev libx11-dev libvulkan-dev
    nlohmann-json3-dev python3-glad khronos-api
    libegl1 libegl-mesa0 libgl1-mesa-dri libglx-mesa0 mesa-vulkan-drivers xvfb
)

# What `check` needs on top.
# shellcheck disable=SC2034
CHECK_PACKAGES=(
    clang clang-tidy clang-format binutils
    g++-mingw-w64-x86-64-posix googletest
)

# What `windows` needs on top.
# shellcheck disable=SC2034
WINDOWS_PACKAGES=(
    g++-mingw-w64-x86-64-posix googletest
    wine wine64
)

# What `fuzz` needs on top.
# shellcheck disable=SC2034
FUZZ_PACKAGES=(clang libclang-rt-14-dev)

# missing_packages PACKAGE...: prints those that are not installed.
missing_packages()
{
    local installed package
    installed=$(dpkg-query --show --showformat '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        grep -Fxq "installed $package" <<<"$installed" || echo "$package"
    done
}

# apt_get COMMAND ARGUMENT...: as root, without questions.
apt_get()
{
    local -a as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get "$@" </dev/null
}

# install_packages PACKAGE...: installs what is missing; quick and without network when nothing is.
install_packages()
{
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "dev: this is not Debian, so nothing is installed; the packages needed are: $*" >&2
        return 0
    fi
    local -a missing
    mapfile -t missing < <(missing_packages "$@")
    [ "${#missing[@]}" -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        echo "dev: these packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
        return 1
    fi
    echo "packages to install: ${missing[*]}"
    quiet_step "update the package lists" apt_get update
    quiet_step "install packages" apt_get install --yes --no-install-recommends "${missing[@]}"
}
