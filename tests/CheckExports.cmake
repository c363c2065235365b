# Fails unless the library LIBRARY exports exactly one symbol, cpp_tm_quorvane, under the name libquorvane.so.1.
#   cmake -DNM=... -DREADELF=... -DLIBRARY=... -P CheckExports.cmake
execute_process(COMMAND "${NM}" -D --defined-only "${LIBRARY}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "^[0-9a-f]+ " "" symbol "${symbols}")
string(STRIP "${symbol}" symbol)
if(NOT symbol STREQUAL "T cpp_tm_quorvane")
  message(FATAL_ERROR "exported symbols:\n${symbols}")
endif()
execute_process(COMMAND "${READELF}" -d "${LIBRARY}" OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "SONAME[^\n]*\\[libquorvane\\.so\\.1\\]")
  message(FATAL_ERROR "no SONAME libquorvane.so.1 in:\n${dynamic}")
endif()
