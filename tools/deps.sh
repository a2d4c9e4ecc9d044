#!/usr/bin/env bash
# Installs the Debian packages Tarvelix needs to build, test and run, when any is missing.
# Usage: tools/deps.sh [extra package ...]
set -euo pipefail
pkgs=(cmake g++ make qtbase5-dev qtbase5-dev-tools libqt5serialport5-dev python3 srecord python3-intelhex
      gcc-avr avr-libc binutils-avr libsimavr-dev flashrom avrdude "$@")
missing=()
for p in "${pkgs[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
