#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking need.
# Idempotent: a package that is already installed is left alone, and when
# nothing is missing the script touches neither apt nor the network.
set -euo pipefail

packages=(
  g++ make cmake ninja-build pkg-config
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libpugixml-dev libicu-dev libssl-dev duktape-dev
  libsqlite3-dev sqlite3 libzip-dev
  # Mono's compiler and ASP.NET runtime, for the end-to-end tests that render
  # the generated Razor pages (tests/e2e/page_host).
  mono-devel libmono-system-web4.0-cil libmono-system-data4.0-cil
  libmono-system-web-razor2.0-cil libmono-system-web-webpages2.0-cil
  libmono-system-web-webpages-razor2.0-cil libmono-system-web-webpages-deployment2.0-cil
  libmono-sqlite4.0-cil
)

missing=()
for pkg in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$pkg")
done

if [[ ${#missing[@]} -eq 0 ]]; then
  exit 0
fi

echo "deps: installing ${missing[*]}"
sudo=()
if [[ $(id -u) -ne 0 ]]; then
  sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
