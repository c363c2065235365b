# Fails unless the time that exceptions state follows from what is built, not from where and when.
#   cmake -DPROJECT_SOURCE_DIR=... -DSCRATCH=... -P CheckSourceTime.cmake
cmake_minimum_required(VERSION 3.25)
include("${PROJECT_SOURCE_DIR}/cmake/SourceTime.cmake")

file(GLOB_RECURSE sources "${PROJECT_SOURCE_DIR}/engine/*" "${PROJECT_SOURCE_DIR}/export/*")
foreach(source IN LISTS sources)
  file(STRINGS "${source}" found REGEX "__(DATE|TIME|TIMESTAMP)__")
  if(found)
    message(FATAL_ERROR "${source} depends on when it is built: ${found}")
  endif()
endforeach()

function(expect_time pExpected)
  quorvane_source_time(time ${ARGN})
  if(NOT time STREQUAL pExpected)
    message(FATAL_ERROR "'${time}' in place of '${pExpected}'")
  endif()
endfunction()

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY "${SCRATCH}" OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# A folder of its own stands for the project.
file(REMOVE_RECURSE "${SCRATCH}")
file(MAKE_DIRECTORY "${SCRATCH}")
set(PROJECT_SOURCE_DIR "${SCRATCH}")
unset(ENV{SOURCE_DATE_EPOCH})
run(touch -d "2001-09-09T01:46:40Z" older)
run(touch -d "2009-02-13T23:31:30Z" newer)
expect_time("Fri Feb 13 23:31:30 2009" "${SCRATCH}/newer" "${SCRATCH}/older")

find_program(GIT git)
if(GIT)
  run("${GIT}" init -q)
  expect_time("Sun Sep  9 01:46:40 2001" "${SCRATCH}/older")  # no commit yet
  set(ENV{GIT_COMMITTER_DATE} "2006-01-02T05:04:05+0200")
  run("${GIT}" -c user.name=test -c user.email=test@localhost commit -q --allow-empty -m test)
  expect_time("Mon Jan  2 03:04:05 2006" "${SCRATCH}/newer")
endif()

set(ENV{SOURCE_DATE_EPOCH} 0)
expect_time("Thu Jan  1 00:00:00 1970" "${SCRATCH}/newer")
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "0")
  message(FATAL_ERROR "SOURCE_DATE_EPOCH has changed")
endif()
