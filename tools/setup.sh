# What ./run, ./test and tools/bench share: the machine's packages, and a build. To be sourced by bash; the sourcing
# script has set `root` to the top of the source tree.

say() { printf '== %s\n' "$*"; }

fail() {
  printf '%s\n' "$*" >&2
  exit 2
}

# Tools count as there when they can be called, whoever installed them; libraries when their package is.
install_packages() {
  local missing=() pair package
  for pair in cmake:cmake ninja-build:ninja g++:g++ ccache:ccache mold:mold python3:python3 poppler-utils:pdftotext \
    pkgconf:pkg-config zbar-tools:zbarimg mdbtools:mdb-export openssl:openssl \
    curl:curl; do
    command -v "${pair#*:}" >/dev/null || missing+=("${pair%%:*}")
  done
  command -v dpkg-query >/dev/null || fail "This script installs Debian packages, and this is no Debian system."
  for package in libsqlitecpp-dev libsqlite3-dev libfmt-dev nlohmann-json3-dev libcli11-dev libgtest-dev libbenchmark-dev \
    qt6-base-dev qt6-svg-dev qt6-charts-dev libqt6opengl6-dev qt6-serialport-dev libxlsxwriter-dev libzxing-dev libqrencode-dev \
    libcurl4-openssl-dev libssl-dev mdbtools-dev proftpd-core proftpd-mod-crypto libpq-dev postgresql \
    fonts-open-sans dpkg-dev; do
    [[ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" == installed ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  say "Install ${missing[*]}"
  local as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null ||
      fail "These packages are missing: ${missing[*]}. Install them as root, or install sudo, then start again."
    as_root=(sudo)
    [[ -t 0 ]] || as_root+=(-n)
  fi
  local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive RUNLEVEL=1 apt-get -q -o DPkg::Lock::Timeout=300)
  # Nothing that comes along starts a service of its own: the tests start the servers that they need, an FTP server on a port of
  # theirs, a database server on a socket in a scratch folder.
  { "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; } </dev/null ||
    fail "The packages could not be installed: ${missing[*]}. Install them by hand, then start again."
}

# build FOLDER [-DOPTION=VALUE]... [--target NAME]...: configures and builds, quietly where there is nothing to tell.
build() {
  local folder=$1 options=() targets=()
  shift
  while (($#)); do
    case $1 in
      --target) targets+=("$2"); shift ;;
      *) options+=("$1") ;;
    esac
    shift
  done
  say "Configure ${folder#"$root"/}"
  local log
  log=$(cmake -S "$root" -B "$folder" -G Ninja "${options[@]}" 2>&1) || { printf '%s\n' "$log" >&2; exit 1; }
  say "Build ${targets[*]:-everything}"
  # What ccache has not seen is compiled at once, without reading its headers twice more to find out.
  export CCACHE_DEPEND=1
  cmake --build "$folder" ${targets[@]:+--target "${targets[@]}"}
}
