# Sets pResult to the time that exceptions state for the sources, such as "Mon Jan  2 03:04:05 2006" (UTC):
# SOURCE_DATE_EPOCH, else the commit that is checked out, else the newest of the given files. So all builds of a
# commit give the same bytes, also of shallow clones and in folders of any name. It is taken when CMake configures.
function(quorvane_source_time pResult)
  set(epoch "$ENV{SOURCE_DATE_EPOCH}")
  if(NOT epoch MATCHES "^[0-9]+$")
    quorvane_commit_epoch(epoch)
  endif()
  if(NOT epoch MATCHES "^[0-9]+$")
    quorvane_newest_epoch(epoch ${ARGN})
  endif()
  quorvane_format_epoch("${epoch}" time)
  set(${pResult} "${time}" PARENT_SCOPE)
endfunction()

# Empty unless this very folder is what Git has checked out: a copy may lie in another project's folder.
function(quorvane_commit_epoch pResult)
  set(${pResult} "" PARENT_SCOPE)
  find_program(GIT git)
  mark_as_advanced(GIT)
  if(NOT GIT OR NOT EXISTS "${PROJECT_SOURCE_DIR}/.git")
    return()
  endif()
  execute_process(COMMAND "${GIT}" -c "safe.directory=*" -C "${PROJECT_SOURCE_DIR}"
                          log -1 --no-show-signature --format=%ct
                  OUTPUT_VARIABLE epoch ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(${pResult} "${epoch}" PARENT_SCOPE)
endfunction()

function(quorvane_newest_epoch pResult)
  set(newest 0)
  foreach(file IN LISTS ARGN)
    file(TIMESTAMP "${file}" epoch "%s" UTC)
    if(epoch GREATER newest)
      set(newest "${epoch}")
    endif()
  endforeach()
  set(${pResult} "${newest}" PARENT_SCOPE)
endfunction()

function(quorvane_format_epoch pEpoch pResult)
  set(given "$ENV{SOURCE_DATE_EPOCH}")
  set(ENV{SOURCE_DATE_EPOCH} "${pEpoch}")  # the time that string(TIMESTAMP) takes for the present
  string(TIMESTAMP time "%a %b %d %H:%M:%S %Y" UTC)
  if(given STREQUAL "")
    unset(ENV{SOURCE_DATE_EPOCH})
  else()
    set(ENV{SOURCE_DATE_EPOCH} "${given}")
  endif()
  string(REGEX REPLACE "^(... ...) 0" "\\1  " time "${time}")
  set(${pResult} "${time}" PARENT_SCOPE)
endfunction()
