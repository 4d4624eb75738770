# cmake -DSCRIPT=FILE -DOUTPUT=FILE -P build_stamp_test.cmake: tests what the script writes there.

function(write_stamp)
  file(REMOVE ${OUTPUT})
  execute_process(COMMAND ${CMAKE_COMMAND} -DOUTPUT=${OUTPUT} -P ${SCRIPT} COMMAND_ERROR_IS_FATAL ANY)
  file(READ ${OUTPUT} text)
  set(text "${text}" PARENT_SCOPE)
endfunction()

# The moment is the one that the variable names.
set(ENV{SOURCE_DATE_EPOCH} 1752571463)
write_stamp()
if(NOT text STREQUAL "constexpr char kBuildStampText[] = \"Tue Jul 15 09:24:23 2025\";\n")
  message(FATAL_ERROR "with SOURCE_DATE_EPOCH: ${text}")
endif()

# Without it, the moment is now: not earlier than a stamp of before, and not later than one of after.
unset(ENV{SOURCE_DATE_EPOCH})
string(TIMESTAMP before "%s" UTC)
write_stamp()
string(TIMESTAMP after "%s" UTC)
set(is_now FALSE)
foreach(second RANGE ${before} ${after})
  set(ENV{SOURCE_DATE_EPOCH} ${second})
  string(TIMESTAMP stamp "%a %b %d %H:%M:%S %Y" UTC)
  if(text STREQUAL "constexpr char kBuildStampText[] = \"${stamp}\";\n")
    set(is_now TRUE)
  endif()
endforeach()
if(NOT is_now)
  message(FATAL_ERROR "between ${before} and ${after}: ${text}")
endif()
