#!/usr/bin/env bash
# Runs a program with two file systems that only this program sees: one of 64 KiB and
# one that is read-only. They vanish when the program ends.
#
#   in-own-mounts.sh PROGRAM [ARGUMENTS...]
set -euo pipefail

if [[ -z "${CORVANE_MOUNTS-}" ]]; then
  CORVANE_MOUNTS=$(mktemp -d)
  export CORVANE_MOUNTS
  trap 'rmdir "$CORVANE_MOUNTS"' EXIT
  as_root=()
  ((EUID == 0)) || as_root=(--map-root-user)
  if ! why=$(unshare --mount "${as_root[@]}" true 2>&1); then
    echo "mount namespaces are not permitted here ($why): run it as root, and a container with the capability SYS_ADMIN" >&2
    exit 1
  fi
  unshare --mount "${as_root[@]}" "$0" "$@"
  exit
fi

mount -t tmpfs -o size=256k none "$CORVANE_MOUNTS"
mkdir "$CORVANE_MOUNTS/full" "$CORVANE_MOUNTS/read-only"
mount -t tmpfs -o size=64k none "$CORVANE_MOUNTS/full"
mount -t tmpfs -o ro none "$CORVANE_MOUNTS/read-only"
exec "$@"
