# Test scripts that mostly wait on real time run side by side under ctest -j;
# a long one names its parts (tests/list_parts.py reads them) and each part
# becomes a test of its own.
#
# kelvo_script_parts(<script> <parts-var> <seconds-var>) sets <parts-var> to the
# script's parts ("-" when it has none) and <seconds-var> to about how long each
# runs alone, for the tests' COST: ctest then starts the longest first.
function(kelvo_script_parts script parts_var seconds_var)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${script})
  execute_process(COMMAND python3 ${CMAKE_SOURCE_DIR}/tests/list_parts.py ${script}
    OUTPUT_VARIABLE listed RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "tests/list_parts.py could not list the parts of ${script}")
  endif()
  string(REPLACE "\n" ";" lines "${listed}")
  set(parts)
  set(seconds)
  foreach(line IN LISTS lines)
    if(line MATCHES "^([^ ]+) ([0-9]+)$")
      list(APPEND parts ${CMAKE_MATCH_1})
      list(APPEND seconds ${CMAKE_MATCH_2})
    endif()
  endforeach()
  set(${parts_var} ${parts} PARENT_SCOPE)
  set(${seconds_var} ${seconds} PARENT_SCOPE)
endfunction()
