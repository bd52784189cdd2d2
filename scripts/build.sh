# Builds through the presets. To be sourced after console.sh.

# ccache, if it is installed, makes the second build short. These settings let it
# cache sources that use a precompiled header.
if command -v ccache >/dev/null; then
  export CCACHE_SLOPPINESS=pch_defines,time_macros
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
fi

# The tests need packages that the programs do not need. A command without tests sets this
# to false; a build folder that already has tests keeps them.
with_tests=true
# Further options of a configuration.
build_options=()

# configure_and_build PRESET [TARGET...]: without a TARGET it builds everything.
configure_and_build() {
  local preset=$1 targets=() options=("${build_options[@]}")
  shift
  (($# == 0)) || targets=(--target "$@")
  if [[ "$with_tests" == true ]]; then
    options+=(-DCORVANE_TESTS=ON)
  elif [[ ! -e "$top/build/$preset/build.ninja" ]]; then
    options+=(-DCORVANE_TESTS=OFF)
  fi
  (cd "$top" && cmake --preset "$preset" "${options[@]}" && cmake --build --preset "$preset" "${targets[@]}")
}

# build PRESET [TARGET...]: commands that run side by side build one after the other.
build() {
  mkdir -p "$top/build/$1"
  (
    flock 9
    quietly "build-$1" configure_and_build "$@" 9>&-
  ) 9>"$top/build/$1/building.lock"
}
