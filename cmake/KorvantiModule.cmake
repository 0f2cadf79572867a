# korvanti_module(NAME HEADERS … SOURCES … DEPENDS … TESTS …)
#
# One folder of core/ or app/ as a static library Korvanti::NAME. Headers are included as "NAME/Header.h". A module's
# include path holds nothing but a link to its one folder, so that it sees its own headers and those of what it depends
# on, directly or by way of another: an include upwards fails to build.
include(GoogleTest)

function(korvanti_module name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;SOURCES;DEPENDS;TESTS")
  set(target korvanti_${name})
  set(include_root ${PROJECT_BINARY_DIR}/modules/${name})
  file(MAKE_DIRECTORY ${include_root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${include_root}/${name} SYMBOLIC)

  list(TRANSFORM arg_HEADERS PREPEND ${include_root}/${name}/)
  add_library(${target} STATIC ${arg_SOURCES})
  add_library(Korvanti::${name} ALIAS ${target})
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${include_root} FILES ${arg_HEADERS})
  target_link_libraries(${target} PUBLIC ${arg_DEPENDS} PRIVATE korvanti_warnings)

  if(BUILD_TESTING AND arg_TESTS)
    korvanti_tests(${name} SOURCES ${arg_TESTS} DEPENDS Korvanti::${name})
  endif()
endfunction()

# korvanti_tests(NAME SOURCES … DEPENDS … [BOX [BESIDE PROGRAM] | BOX_ROOT] [TIMEOUT SECONDS])
#
# One test executable; every test in it is a test of ctest. With BOX each test runs inside the Mac in a box
# and carries the label "box"; with BOX_ROOT as root there, who may mount. The program BESIDE a test
# is run as root, and ends with it.
function(korvanti_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "BOX;BOX_ROOT" "BESIDE;TIMEOUT" "SOURCES;DEPENDS")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set(target korvanti_${name}_tests)
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE ${arg_DEPENDS} korvanti_test_support korvanti_warnings)
  if(NOT TARGET korvanti_unit_tests)
    add_custom_target(korvanti_unit_tests) # those that need no box
  endif()
  set(properties TIMEOUT ${arg_TIMEOUT})
  if(arg_BOX OR arg_BOX_ROOT)
    set(enter ${PROJECT_SOURCE_DIR}/tests/box/enter)
    if(arg_BOX_ROOT)
      list(APPEND enter --root)
    endif()
    if(arg_BESIDE)
      list(APPEND enter --beside ${arg_BESIDE})
    endif()
    set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR "${enter}")
    list(APPEND properties LABELS box SKIP_RETURN_CODE 77)
  else()
    add_dependencies(korvanti_unit_tests ${target})
  endif()
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
