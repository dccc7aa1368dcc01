# What ./run, ./check, .ci/run and bench/run share: installing packages, configuring and building.
# Sourced by bash with `root` set to the top of the tree. Everything here prints to standard error only and
# leaves standard input alone.

build_packages=(g++ cmake ninja-build ccache pkg-config qt6-base-dev libfreetype-dev
    libfontconfig-dev zlib1g-dev libdeflate-dev binutils-mingw-w64-x86-64)
font_packages=(fonts-noto-cjk fonts-liberation hershey-fonts-data)
test_packages=(libgtest-dev libgmock-dev python3)
sanitizer_packages=(clang libclang-rt-14-dev)

# GCC's precompiled headers and ccache agree only when told to.
export CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime

say() { printf '%s\n' "$*" >&2; }

fail() {
    say "错误：$*"
    exit 1
}

missing_packages() {
    dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null |
        awk -v wanted="$*" '$2 == "installed" { have[$1] = 1 }
            END { n = split(wanted, names, " "); for (i = 1; i <= n; i++) if (!(names[i] in have)) print names[i] }'
}

apt() {
    local as=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "缺少软件包，而当前用户不是 root，也没有 sudo：请用 root 运行 apt-get $*"
        as=(sudo)
    fi
    "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -q \
        -o Acquire::Retries=3 -o DPkg::Lock::Timeout=300 "$@" </dev/null >&2
}

# need PACKAGE...: installs those that are missing; the package lists are renewed only when they have to be.
need() {
    local missing attempt
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -eq 0 ] && return
    say "安装软件包：${missing[*]}"
    for attempt in 1 2 3; do
        if apt-cache show "${missing[@]}" >/dev/null 2>&1 &&
            apt install --no-install-recommends "${missing[@]}"; then
            return
        fi
        [ "$attempt" -gt 1 ] && sleep $((attempt * 5))
        apt update || true
    done
    fail "软件包安装失败：${missing[*]}"
}

# configure PRESET: runs CMake when the build folder is new, came from another place, or the presets changed;
# Ninja sees to every other change itself.
configure() {
    local folder="$root/build/$1" launcher=()
    if [ -f "$folder/build.ninja" ] && [ "$folder/build.ninja" -nt "$root/CMakePresets.json" ] &&
        grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"; then
        return
    fi
    command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    say "配置：$1"
    (cd "$root" && cmake --fresh --preset "$1" "${launcher[@]}") </dev/null >&2 || fail "CMake 配置失败：$1"
}

# build PRESET [TARGET...]: one build at a time in a folder; says nothing when there is nothing to do.
build() {
    local preset=$1
    shift
    mkdir -p "$root/build"
    exec 9>"$root/build/$preset.lock"
    flock 9
    configure "$preset"
    ninja -C "$root/build/$preset" "$@" </dev/null 2>&1 9>&- |
        sed -u -e '/^ninja: Entering directory/d' -e '/^ninja: no work to do/d' -e '/Re-checking globbed/d' >&2
    [ "${PIPESTATUS[0]}" -eq 0 ] || fail "编译失败：$preset"
    exec 9>&-
}
