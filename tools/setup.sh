# Sourced by run, test, bench and the checks: what the machine must have, and how a preset is built.
# Everything it says goes to standard error, so that the output of the program stays clean.

export KORVANTI_ROOT
KORVANTI_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }
die() { say "$*"; exit 1; }

# Packages by purpose: Debian's names, and Homebrew's where they are called otherwise or come with Xcode ("-").
packages_for() {
  local debian brew
  case $1 in
    build)
      debian="g++ cmake ninja-build libicu-dev libtbb-dev nlohmann-json3-dev libfmt-dev uuid-dev
        qt6-base-dev qt6-declarative-dev qt6-svg-dev libgl-dev qml6-module-qtquick qml6-module-qtquick-window
        qml6-module-qtquick-controls qml6-module-qtquick-templates qml6-module-qtquick-layouts qml6-module-qtqml qml6-module-qtqml-models
        qml6-module-qtqml-workerscript qml6-module-qtquick-dialogs
        qml6-module-qt-labs-folderlistmodel fonts-inter fonts-dejavu-core"
      brew="cmake ninja icu4c tbb nlohmann-json fmt qt" ;;
    test)
      debian="libgtest-dev libgmock-dev util-linux locales git procps dbus-daemon xvfb xdotool"
      brew="googletest" ;;
    demo)
      debian="git util-linux"
      brew="" ;;
    checks)
      debian="clang-16 libc++-16-dev libc++abi-16-dev libclang-rt-16-dev clang-tidy-16 clang-format-16"
      brew="llvm@16" ;;
    mac-check)
      debian="npm libgnustep-base-dev libgnustep-gui-dev"
      brew="node" ;;
    package)
      debian="dpkg-dev file"
      brew="" ;;
    package-checks)
      debian="lintian desktop-file-utils appstream man-db groff zsh fish python3-yaml"
      brew="" ;;
    pictures)
      debian="pngquant"
      brew="pngquant" ;;
    bench)
      debian="gdu ncdu"
      brew="gdu ncdu" ;;
    *) die "setup: no packages are listed for '$1'" ;;
  esac
  if [ "$(uname)" = Darwin ]; then echo "$brew"; else echo "$debian"; fi
}

debian_missing() {
  # One query for all: a package that is not installed gives no line with " ok installed", and one that dpkg has never
  # heard of makes the query fail.
  local installed
  installed=$(dpkg-query -W -f='${Package} ${Status}\n' "$@" 2>/dev/null | sed -n 's/ install ok installed$//p') || true
  local package
  for package in "$@"; do
    case $package in
      npm) command -v npm >/dev/null && continue ;; # Node.js from elsewhere brings its own
    esac
    grep -qxF -- "$package" <<<"$installed" || echo "$package"
  done
}

install_debian() {
  local missing
  mapfile -t missing < <(debian_missing "$@")
  [ ${#missing[@]} -gt 0 ] || return 0
  say "Installing with apt: ${missing[*]}"
  local as_root=(env)
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "These packages are needed, and there is no sudo to install them with."
    as_root=(sudo)
  fi
  "${as_root[@]}" sh -c 'export DEBIAN_FRONTEND=noninteractive
    apt-get update -q && apt-get install -qy --no-install-recommends "$@"' apt "${missing[@]}" >&2 ||
    die "apt could not install: ${missing[*]}"
}

install_brew() {
  command -v brew >/dev/null || die "Homebrew is needed to install: $* (see https://brew.sh)"
  local prefix missing=() formula
  prefix=$(brew --prefix)
  for formula in "$@"; do
    [ -e "$prefix/opt/$formula" ] || missing[${#missing[@]}]=$formula
  done
  if [ ${#missing[@]} -gt 0 ]; then
    say "Installing with Homebrew: ${missing[*]}"
    brew install "${missing[@]}" >&2
  fi
  export CMAKE_PREFIX_PATH="$prefix/opt/icu4c"
}

# need PURPOSE…: installs what is missing for these purposes.
need() {
  local purpose all=()
  for purpose in "$@"; do
    # shellcheck disable=SC2207 # package names hold no blanks
    all+=($(packages_for "$purpose"))
  done
  case $(uname) in
    Darwin) install_brew "${all[@]}" ;;
    *)
      command -v apt-get >/dev/null || die "This script installs with apt or Homebrew; please install: ${all[*]}"
      install_debian "${all[@]}" ;;
  esac
}

# build PRESET [TARGET…]: configures where that is needed and builds. Says nothing when there is nothing to do.
# With KORVANTI_UNITY set, a folder configured anew compiles several sources as one, and no more for a debugger than its
# preset names itself.
build() {
  local preset=$1 folder="$KORVANTI_ROOT/build/$1"
  shift
  if [ ! -f "$folder/build.ninja" ] || [ "$KORVANTI_ROOT/CMakePresets.json" -nt "$folder/build.ninja" ]; then
    say "Configuring $preset."
    (cd "$KORVANTI_ROOT" && cmake --preset "$preset" ${KORVANTI_UNITY:+-DCMAKE_UNITY_BUILD=ON -DCMAKE_CXX_FLAGS_DEBUG=}) >&2
    touch "$folder/build.ninja"
  fi
  case $(ninja -C "$folder" -n "${@:-all}" 2>&1) in
    *"ninja: no work to do."*) return ;;
  esac
  say "Building $preset."
  ninja -C "$folder" "${@:-all}" >&2
}
