# Compiler settings that every target of the project shares.
#
# Two of them are part of the engine's contract, which is to round where the source rounds:
# -ffp-contract=off         A fused multiply-add rounds once where the formulas round twice, so it would give
#                           other bytes on machines that have it.
# -fno-tree-slp-vectorize   GCC 12 puts neighbouring doubles that are rounded to floats and widened again side
#                           by side in a vector and then drops both conversions: values are not rounded at
#                           all. It does so from -O2 on, in straight-line code and unrolled loops. Clang does
#                           not. tests/golden/RoundingCheck.cpp finds compilers that drop a rounding.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT QUORVANE_SHARED_CORE)  # whose programs need all of the engine's names
  set(CMAKE_CXX_VISIBILITY_PRESET hidden)
  set(CMAKE_C_VISIBILITY_PRESET hidden)
  set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
endif()
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(QUORVANE_ROUNDING_FLAGS -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  list(APPEND QUORVANE_ROUNDING_FLAGS -fno-tree-slp-vectorize)
endif()

add_library(quorvane_compile INTERFACE)
target_compile_options(quorvane_compile INTERFACE
  ${QUORVANE_ROUNDING_FLAGS} -fno-math-errno
  "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/="
  -Wall -Wextra -Wconversion -Wshadow)  # errors in the presets of developers

# Windows aligns the stack to 16 bytes. GCC without a patch takes it for aligned to 32 and 64 where it keeps vectors
# of that size there: the assembler then writes the moves that need no alignment.
if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(quorvane_compile INTERFACE -Wa,-muse-unaligned-vector-move)
endif()

set(QUORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(QUORVANE_SANITIZE)
  add_compile_definitions(QUORVANE_SANITIZED)
  add_compile_options("-fsanitize=${QUORVANE_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options("-fsanitize=${QUORVANE_SANITIZE}")
endif()
