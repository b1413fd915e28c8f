# Script: writes the module definition file of the DLL from the list of export names. For 32-bit
# systems the names get the decoration that the symbols of the objects have: `Vexa_Open@0`.
#
# Variables: NM, OBJECT_LIST (file with one object per line), EXPORTS, POINTER_SIZE, DLL, OUTPUT.
file(STRINGS ${EXPORTS} names)
execute_process(COMMAND ${NM} --defined-only --extern-only @${OBJECT_LIST}
                OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)

set(lines "LIBRARY ${DLL}\nEXPORTS\n")
set(missing "")
foreach(name IN LISTS names)
  if(POINTER_SIZE EQUAL 4)
    set(pattern " T _(${name}@[0-9]+)\r?\n")
  else()
    set(pattern " T (${name})\r?\n")
  endif()
  if(symbols MATCHES "${pattern}")
    string(APPEND lines "  ${CMAKE_MATCH_1}\n")
  else()
    list(APPEND missing ${name})
  endif()
endforeach()
if(missing)
  list(JOIN missing "\n  " missing)
  message(FATAL_ERROR "Listed in ${EXPORTS}, but no function of the library:\n  ${missing}")
endif()
file(WRITE ${OUTPUT} "${lines}")
