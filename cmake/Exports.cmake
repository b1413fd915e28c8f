# Makes exports.txt the one list of what the library gives away: the linker's module definition
# file (PE) or version script (ELF) is written from it.

set(VEXA_EXPORTS_FILE ${CMAKE_CURRENT_LIST_DIR}/exports.txt)
set(VEXA_WRITE_DEF_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/WriteDef.cmake)

if(WIN32)
  # Makes import libraries in the form of Microsoft's linker.
  find_program(VEXA_LLVM_DLLTOOL NAMES llvm-dlltool-14 llvm-dlltool REQUIRED)
endif()

# Restricts the exports of the shared library `target`, which is made of the object library
# `objects`, to the list.
function(vexa_restrict_exports target objects)
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
               ${VEXA_EXPORTS_FILE})
  if(WIN32)
    # 32-bit functions carry the size of their arguments in the symbol (_Vexa_Open@0). The size is
    # known to the compiler alone, so the definition file is written after compiling.
    set(def ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    set(object_list ${CMAKE_CURRENT_BINARY_DIR}/${target}.objects)
    file(GENERATE OUTPUT ${object_list} CONTENT "$<JOIN:$<TARGET_OBJECTS:${objects}>,\n>\n")
    add_custom_command(
      OUTPUT ${def}
      COMMAND ${CMAKE_COMMAND} -D NM=${CMAKE_NM} -D OBJECT_LIST=${object_list}
              -D EXPORTS=${VEXA_EXPORTS_FILE} -D POINTER_SIZE=${CMAKE_SIZEOF_VOID_P}
              -D DLL=$<TARGET_FILE_NAME:${target}> -D OUTPUT=${def} -P ${VEXA_WRITE_DEF_SCRIPT}
      DEPENDS $<TARGET_OBJECTS:${objects}> ${VEXA_EXPORTS_FILE} ${VEXA_WRITE_DEF_SCRIPT}
      COMMENT "Writing ${target}.def"
      VERBATIM)
    target_sources(${target} PRIVATE ${def})
    # Other compilers take this import library, or make their own from the names in the DLL.
    set(machine i386:x86-64)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      set(machine i386)
    endif()
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
                       COMMAND ${VEXA_LLVM_DLLTOOL} --machine ${machine} --kill-at
                               --input-def ${def}
                               --output-lib $<TARGET_LINKER_FILE_DIR:${target}>/${target}.lib)
    file(STRINGS ${VEXA_EXPORTS_FILE} names)
    list(JOIN names "\n  " names)
    file(CONFIGURE OUTPUT ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${target}.def @ONLY
         CONTENT "LIBRARY @target@.dll\nEXPORTS\n  @names@\n")
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      # Exported without the decoration. The linker's import library would then lack it too, while
      # callers refer to the decorated symbols, so another one takes its place.
      target_link_options(${target} PRIVATE LINKER:--kill-at)
      add_custom_command(TARGET ${target} POST_BUILD VERBATIM
                         COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${def}
                                 --output-lib $<TARGET_LINKER_FILE:${target}>)
    endif()
  else()
    # Beside the camera functions: what stands in for Windows on other systems (VexaHost.h).
    file(STRINGS ${VEXA_EXPORTS_FILE} names)
    list(JOIN names ";\n    " names)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(CONFIGURE OUTPUT ${script} @ONLY CONTENT "{
  global:
    @names@;
    GetLastError;
    SetLastError;
    VexaHost_*;
  local:
    *;
};
")
    target_link_options(${target} PRIVATE LINKER:--version-script=${script})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
  endif()
endfunction()
