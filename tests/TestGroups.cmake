# What keeps a run of the tests from passing although nothing was tested.

# Gives a variable the sources of these folders; a folder without a test ends the configuration.
function(collect_tests list)
  set(all "")
  foreach(folder IN LISTS ARGN)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    if(NOT sources MATCHES "_test\\.cpp")
      message(FATAL_ERROR "there is no test in ${CMAKE_CURRENT_SOURCE_DIR}/${folder}")
    endif()
    list(APPEND all ${sources})
  endforeach()
  set(${list} ${all} PARENT_SCOPE)
endfunction()

# Makes a test fail whose program ran none: a filter may leave nothing over.
function(refuse_no_tests name)
  set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "Running 0 tests")
endfunction()
