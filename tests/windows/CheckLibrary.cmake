# Fails unless the library LIBRARY exports one function, needs no other libraries than those that travel along or are
# part of Windows, is hardened, and moves wide vectors without taking memory for aligned: the stack of a function that
# Windows calls is aligned to 16 bytes only.
#   cmake -DOBJDUMP=... -DLIBRARY=... -P CheckLibrary.cmake
function(dump pResult)
  execute_process(COMMAND "${OBJDUMP}" ${ARGN} "${LIBRARY}" OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  set(${pResult} "${text}" PARENT_SCOPE)
endfunction()

dump(headers -p)
if(NOT headers MATCHES "Ordinal/Name Pointer. Table\n\t.   0. cpp_tm_quorvane\n\n")
  message(FATAL_ERROR "exports other names than one:\n${headers}")
endif()
string(REGEX MATCHALL "DLL Name: [^\n]+" libraries "${headers}")
list(FILTER libraries EXCLUDE REGEX ": (ADVAPI32|KERNEL32|msvcrt|libgcc_s_seh-1|libstdc\\+\\+-6|libwinpthread-1)\\.dll$")
if(libraries)
  message(FATAL_ERROR "needs more libraries: ${libraries}")
endif()
foreach(flag HIGH_ENTROPY_VA DYNAMIC_BASE NX_COMPAT)
  if(NOT headers MATCHES "\t${flag}\n")
    message(FATAL_ERROR "is not marked ${flag}:\n${headers}")
  endif()
endforeach()

dump(code -d --no-show-raw-insn --section=.text)
if(NOT code MATCHES "%zmm[^\n]*\\(%r[sb]p\\)")
  message(FATAL_ERROR "has no wide vector on the stack: nothing to check")
endif()
set(aligned "vmov(ap[sd]|dqa[0-9]*|nt[a-z0-9]+)[ \t]+")
if(code MATCHES "[^\n]*${aligned}(%[yz]mm[^\n]*\\(|[^\n]*\\)[^\n]*%[yz]mm)[^\n]*")
  message(FATAL_ERROR "takes memory for aligned to a wide vector:\n${CMAKE_MATCH_0}")
endif()
