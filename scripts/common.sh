# Shared by ./run and ./test: installs what packages.list names and is missing, builds a preset.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$top"

say() { printf '%s\n' "$*" >&2; }

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_packages() {
  local wanted missing=()
  wanted=$(sed 's/#.*//' packages.list)
  for name in $wanted "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "Installing: ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

build() { # preset, targets...
  local preset=$1
  shift
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset" ${1:+--target "$@"}
}
