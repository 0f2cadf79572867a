# CI compiles the sources of a target as one (CMAKE_UNITY_BUILD), which halves the time of its builds. Sources that have a
# name of their own in common with a neighbour stay apart: those listed, and all of the targets listed.
function(korvanti_compile_apart folder)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/)
  set_source_files_properties(${ARGN} DIRECTORY ${PROJECT_SOURCE_DIR}/${folder} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

korvanti_compile_apart(core/base core/base/Json.cpp)
korvanti_compile_apart(core/cleaning core/cleaning/SafetyGuard.cpp)
# What the cleaner needs must not bring the threads and the devices' numbers in: its tests look at each call that it makes.
korvanti_compile_apart(core/fs core/fs/WalkPool.cpp)
if(NOT APPLE)
  korvanti_compile_apart(core/platform core/platform/linux/Volumes.cpp)
endif()
korvanti_compile_apart(tests/bench tests/bench/TreeMaker.cpp)
set(apart korvanti_providers korvanti_scan) # the latter for the same reason
if(BUILD_TESTING)
  korvanti_compile_apart(core/drives tests/drives/OffloadErrorTests.cpp)
  korvanti_compile_apart(core/scan tests/scan/ReportJsonTests.cpp)
  korvanti_compile_apart(core/settings tests/settings/KorvantiSettingsTests.cpp)
  list(APPEND apart korvanti_base_tests korvanti_cleaning_tests korvanti_providers_tests korvanti_rules_tests)
  if(NOT APPLE)
    korvanti_compile_apart(tests/support tests/support/DiskSpace.cpp) # who does not need it has the system's own answer
    list(APPEND apart korvanti_cleaning_mount_tests korvanti_providers_box_tests)
  endif()
endif()
set_target_properties(${apart} PROPERTIES UNITY_BUILD OFF)
