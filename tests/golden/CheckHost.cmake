# Fails unless the example host writes the picture and the lines that it writes on every machine.
#   cmake "-DHOST=[emulator;]quorvane-host" -DPICTURE=host.ppm -P CheckHost.cmake
set(expected_picture 60fb0fc19b64ade287133d29463a26d40d7fa307e3e80f36448966577e08973f)
set(expected_lines ca33b42cef4cde2366e154c8978c8bc60f3b30119ef7fd963e904340fc6a12b8)

execute_process(COMMAND ${HOST} "${PICTURE}" ERROR_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
file(SHA256 "${PICTURE}" picture)
string(REPLACE "\r\n" "\n" lines "${lines}")
string(SHA256 hash "${lines}")
if(NOT picture STREQUAL expected_picture)
  message(FATAL_ERROR "${PICTURE} has the hash ${picture}, not ${expected_picture}")
elseif(NOT hash STREQUAL expected_lines)
  message(FATAL_ERROR "the lines have the hash ${hash}, not ${expected_lines}:\n${lines}")
endif()
