# Configures and builds presets. Sourced after common.sh; run from the project's root.

# configure PRESET [OPTION…]
configure() {
  local preset=$1
  shift
  if command -v ccache >/dev/null; then
    # Precompiled headers are only cached when it need not know what they define.
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  quietly cmake --preset "$preset" "$@"
}

# build PRESET [--target TARGET]: silent but for what goes wrong.
build() {
  local preset=$1
  shift
  unrandomised cmake --build --preset "$preset" "$@" -- --quiet
}

# The program as it is installed; the tests belong to the other presets, the benchmarks to
# scripts/bench.
build_release() {
  configure release -DVALDRIX_TESTS=OFF -DVALDRIX_BENCH=OFF
  build release
}

# unrandomised COMMAND…: without address space randomisation where the kernel's is wider than the
# sanitizers' shadow memory can be laid out for.
unrandomised() {
  local bits
  bits=$(cat /proc/sys/vm/mmap_rnd_bits 2>/dev/null || echo 28)
  if [[ $bits -gt 28 ]] && setarch -R true 2>/dev/null; then
    setarch -R "$@"
  else
    "$@"
  fi
}
