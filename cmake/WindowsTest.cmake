# Tests that are Windows programs: on other systems they run in Wine, and count as not run (exit
# code 77) where there is none for their word size.

# Launcher of the Windows programs of this build, for tests that start them by themselves.
set(VEXA_WINE_LAUNCHER "")
if(CMAKE_CROSSCOMPILING)
  set(VEXA_WINE_LAUNCHER ${PROJECT_SOURCE_DIR}/tests/run-in-wine.sh ${PROJECT_BINARY_DIR}/wine)
endif()

# vexa_wine_properties(test...): what tests have in common that run in Wine, in one registry.
function(vexa_wine_properties)
  set_tests_properties(${ARGN} PROPERTIES RESOURCE_LOCK wine SKIP_RETURN_CODE 77)
endfunction()

# vexa_add_windows_test(name target [argument...]): runs a program of this build as a test.
function(vexa_add_windows_test name target)
  set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR "${VEXA_WINE_LAUNCHER}")
  add_test(NAME ${name} COMMAND ${target} ${ARGN})
  vexa_wine_properties(${name})
endfunction()
