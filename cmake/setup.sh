# Sourced by run, test and bench: installs what is missing, configures and builds.

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

build_packages=(cmake ninja-build ccache g++ pkg-config libfmt-dev libexpected-dev robin-map-dev libsodium-dev libicu-dev
  libquickfix-dev libasio-dev libssl-dev
  libsqlitecpp-dev libsqlite3-dev libpq-dev libtomlplusplus-dev libcli11-dev nlohmann-json3-dev
  qt6-base-dev qt6-multimedia-dev qt6-svg-dev)

# What was compiled once, in whatever clone of the project, is not compiled again: paths count from the clone.
export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines

# quietly COMMAND...: shows what a command says only when it fails. Standard output stays free for the program.
quietly() {
  local said
  said="$(mktemp)"
  if "$@" >"$said" 2>&1; then
    rm -f "$said"
  else
    cat "$said" >&2
    rm -f "$said"
    return 1
  fi
}

# install_packages NAME...: installs the Debian packages that are missing. Elsewhere than on Debian it leaves
# that to the operator; configuring names what it does not find.
install_packages() {
  command -v dpkg-query >/dev/null || return 0
  local installed name missing=() as_root=()
  installed="$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true)"
  for name in "$@"; do
    [[ $'\n'$installed$'\n' == *$'\n'"installed $name"$'\n'* ]] || missing+=("$name")
  done
  [[ ${#missing[@]} -gt 0 ]] || return 0

  if [[ $EUID -ne 0 ]]; then
    if ! command -v sudo >/dev/null || ! { [[ -t 0 ]] || sudo -n true 2>/dev/null; }; then
      echo "Packages are missing, and installing them takes root. Type this, then try again:" >&2
      echo "  su -c 'apt-get update && apt-get install -y --no-install-recommends ${missing[*]}'" >&2
      return 1
    fi
    as_root=(sudo)
  fi
  echo "Installing ${missing[*]}" >&2
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300)
  # Even lists that can't be brought up to date may name what is needed.
  quietly "${apt[@]}" update || true
  quietly "${apt[@]}" install -y --no-install-recommends "${missing[@]}"
}

# can_build: whether this tree takes what a build writes.
can_build() { [[ -w $root && ( ! -e $root/build || -w $root/build ) ]]; }

# build PRESET TARGET [CMAKE_OPTION...]: configures when the preset is new or changed, then builds. Shows what
# it does on standard error, and nothing when all is up to date. Waits for another build in this tree; in a tree
# that can't be written it makes do with what was built before.
build() (
  preset=$1 target=$2
  shift 2
  folder="$root/build/$preset"
  if ! can_build; then
    if [[ ! -x $folder/bin/$target ]]; then
      echo "$root can't be written, and $target was not built there before" >&2
      return 1
    fi
    echo "$root can't be written: $target is used as it was built before" >&2
    return 0
  fi
  mkdir -p "$root/build"
  exec {lock}>"$root/build/.lock"
  if ! flock --nonblock "$lock"; then
    echo "Another build is running in $root: waiting for it" >&2
    flock "$lock"
  fi
  configured="$folder/.configured$*"
  if [[ ! -e $folder/build.ninja || $root/CMakePresets.json -nt $configured ]]; then
    (cd "$root" && quietly cmake --preset "$preset" "$@") || return 1
    touch "$configured"
  fi
  ninja -C "$folder" -j "$(nproc)" "$target" 2>&1 |
    sed -u -e '/^ninja: no work to do/d' -e '/^ninja: Entering directory/d' -e '/Re-checking globbed/d' >&2
)
