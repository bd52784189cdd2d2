# Building through the presets. To be sourced after console.sh.

# ccache, where there is one, makes the second build a short one. Precompiled
# headers are none of its business unless it is told that they are.
if command -v ccache >/dev/null; then
  export CCACHE_SLOPPINESS=pch_defines,time_macros
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
fi

# configure_and_build PRESET [TARGET...]: everything when no target is named.
configure_and_build() {
  local preset=$1 targets=()
  shift
  (($# == 0)) || targets=(--target "$@")
  (cd "$top" && cmake --preset "$preset" && cmake --build --preset "$preset" "${targets[@]}")
}

build() {
  quietly "build-$1" configure_and_build "$@"
}
