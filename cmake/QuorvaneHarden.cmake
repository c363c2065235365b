# What makes faults harder to exploit, for the library and the tool: a check of the stack's return addresses and
# of buffers whose size is known, jumps to marked places only, and tables that are read-only before the first call.
# Sanitizers check more than these do, and do not go with all of them.
option(QUORVANE_HARDEN "Build the library and the tool hardened, as far as the compiler can" ON)

add_library(quorvane_harden INTERFACE)
if(QUORVANE_HARDEN AND NOT QUORVANE_SANITIZE)
  include(CheckCXXCompilerFlag)
  include(CheckLinkerFlag)
  foreach(flag -fstack-protector-strong -fcf-protection)
    string(MAKE_C_IDENTIFIER "QUORVANE_HAS${flag}" has)
    check_cxx_compiler_flag("${flag}" ${has})
    if(${has})
      target_compile_options(quorvane_harden INTERFACE ${flag})
    endif()
  endforeach()
  foreach(flag -Wl,-z,relro -Wl,-z,now)
    string(MAKE_C_IDENTIFIER "QUORVANE_HAS${flag}" has)
    check_linker_flag(CXX "${flag}" ${has})
    if(${has})
      target_link_options(quorvane_harden INTERFACE ${flag})
    endif()
  endforeach()
  if(MINGW)  # its checks are a library of their own: no host needs another file for their sake
    target_link_libraries(quorvane_harden INTERFACE -l:libssp.a)
  endif()
  # The C library refuses it without optimisation. Who builds packages may ask for more.
  if(NOT "${CMAKE_CXX_FLAGS}" MATCHES "_FORTIFY_SOURCE|-O0")
    target_compile_options(quorvane_harden INTERFACE
      "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  endif()
endif()
