# Fails unless the library or program FILE was linked and compiled hardened.
#   cmake -DNM=... -DREADELF=... -DOBJDUMP=... -DFILE=... -DHAS_GUARD=... -DHAS_CET=... -DIS_FORTIFIED=...
#         -P CheckHardened.cmake
execute_process(COMMAND "${READELF}" -hldW "${FILE}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${NM}" -D --undefined-only "${FILE}" OUTPUT_VARIABLE imports COMMAND_ERROR_IS_FATAL ANY)

function(expect pText pRegex pWhat)
  if(NOT pText MATCHES "${pRegex}")
    message(FATAL_ERROR "${FILE}: ${pWhat}:\n${pText}")
  endif()
endfunction()

expect("${headers}" "Type: +DYN" "has a fixed address")
expect("${headers}" "GNU_RELRO" "has tables that stay writable")
expect("${headers}" "FLAGS_1\\)[^\n]*NOW" "finds its functions when they are called, not before")
expect("${headers}" "GNU_STACK[^\n]* RW +0x" "has an executable stack")
if(headers MATCHES "TEXTREL|[ (]RWE")
  message(FATAL_ERROR "${FILE}: has memory that is writable and executable:\n${headers}")
endif()
if(HAS_GUARD)
  expect("${imports}" "__stack_chk_fail" "does not check its stack")
endif()
if(IS_FORTIFIED)
  expect("${imports}" "__[a-z]+_chk[@\n]" "does not check its buffers")
endif()
if(HAS_CET)
  execute_process(COMMAND "${OBJDUMP}" -d --section=.text "${FILE}" OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "endbr64" marks "${code}")
  list(LENGTH marks count)
  if(count LESS 100)  # the C runtime's own are a handful
    message(FATAL_ERROR "${FILE}: has ${count} marked places to jump to")
  endif()
endif()
