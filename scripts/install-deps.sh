#!/usr/bin/env bash
# Installs the Debian packages that the build, tests, benchmarks and examples need.
# Idempotent: quiet and quick when everything is present.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config clang libomp-dev
  libgtest-dev libgmock-dev libbenchmark-dev libhwy-dev
  libjpeg62-turbo-dev libturbojpeg0-dev libopenjp2-7-dev libopenjp2-tools libpng-dev
  binutils valgrind python3 libgrokj2k1-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
