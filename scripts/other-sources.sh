# Packages from a list of sources of their own, at the address from which this machine gets
# Debian. The system's lists and packages stay as they are. To be sourced after console.sh.
#
#   use_sources FOLDER TYPE RELEASE  makes FOLDER anew, with a list of TYPE (deb, or deb-src
#                                    for sources) of this release of Debian
#   apt_there ARGUMENT...            apt-get with this list

use_sources() {
  local archive
  archive=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1)
  [[ -n "$archive" ]] || fail "this machine has no list of Debian 12's packages: run apt-get update"
  other_sources=$1
  rm -rf "$1"
  mkdir -p "$1"/{lists,archives}/partial
  echo "$2 [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $archive $3 main" >"$1/sources.list"
  apt_there update
}

apt_there() {
  apt-get -qq -o Dir::Etc::sourcelist="$other_sources/sources.list" -o Dir::Etc::sourceparts=/dev/null \
    -o Dir::State::lists="$other_sources/lists" -o Dir::Cache="$other_sources" -o APT::Sandbox::User=root "$@"
}
