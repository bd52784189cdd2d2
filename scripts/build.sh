# Builds through the presets. To be sourced after console.sh.

# ccache, if it is installed, makes the second build short. These settings let it
# cache sources that use a precompiled header.
if command -v ccache >/dev/null; then
  export CCACHE_SLOPPINESS=pch_defines,time_macros
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
fi

# configure_and_build PRESET [TARGET...]: without a TARGET it builds everything.
configure_and_build() {
  local preset=$1 targets=()
  shift
  (($# == 0)) || targets=(--target "$@")
  (cd "$top" && cmake --preset "$preset" && cmake --build --preset "$preset" "${targets[@]}")
}

build() {
  quietly "build-$1" configure_and_build "$@"
}
