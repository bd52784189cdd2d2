# Packages from a list of sources of their own. The system's lists and packages stay as
# they are. To be sourced.
#
#   use_sources FOLDER TYPE RELEASE  makes FOLDER anew, with a list of TYPE (deb, or deb-src
#                                    for sources) of this release of Debian
#   apt_there ARGUMENT...            apt-get with this list

use_sources() {
  other_sources=$1
  rm -rf "$1"
  mkdir -p "$1"/{lists,archives}/partial
  echo "$2 [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] http://deb.debian.org/debian $3 main" \
    >"$1/sources.list"
  apt_there update
}

apt_there() {
  apt-get -qq -o Dir::Etc::sourcelist="$other_sources/sources.list" -o Dir::Etc::sourceparts=/dev/null \
    -o Dir::State::lists="$other_sources/lists" -o Dir::Cache="$other_sources" -o APT::Sandbox::User=root "$@"
}
