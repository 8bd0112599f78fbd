# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# For the other scripts to source. Runs commands in new chroots of Debian, which are gone afterwards.

# in_chroot SUITE PACKAGES OPTION ...: runs the hooks among mmdebstrap's options in a chroot of the
# suite that has these packages, in TMPDIR or /tmp, where it needs up to 4 GB. The environment is
# cleared, so that CC or CFLAGS set here have no effect.
in_chroot() {
  env --ignore-environment PATH="$PATH" ${TMPDIR:+TMPDIR="$TMPDIR"} \
    ${http_proxy:+http_proxy="$http_proxy"} \
    mmdebstrap --quiet --variant=buildd --include="$2" "$1" /dev/null "${@:3}"
}

# pack_commit FILE: writes the files of the last commit as a tar archive with the one folder
# murlink-robot.
pack_commit() {
  mkdir -p "$(dirname "$1")"
  git archive --prefix=murlink-robot/ --output="$1" HEAD
}
