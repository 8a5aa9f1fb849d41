#!/usr/bin/env bash
# Installs, from Debian's packages, everything the project builds and tests with.
# Does nothing when all of it is there already.
set -euo pipefail

packages=(
  build-essential cmake pkg-config python3
  libxml2-dev libxml2-utils          # XML store, schema checks, xmllint baseline
  libgtest-dev libgmock-dev          # tests
  libbenchmark-dev                   # bench/
  libcli11-dev                       # the command-line tool
  clang libclang-rt-dev              # fuzzing
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}"
fi
