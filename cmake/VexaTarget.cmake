# What every target of ours is compiled with.

find_package(Threads REQUIRED)

function(vexa_configure_target target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
  if(VEXA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(WIN32)
    # XP's interfaces are enough, and the smaller windows.h keeps min, max and the like out.
    target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      # Callers of 32-bit code need not keep the stack aligned to 16 bytes, which vector code
      # relies on.
      target_compile_options(${target} PRIVATE -mstackrealign -msse2 -mfpmath=sse)
    endif()
  endif()
  if(VEXA_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${VEXA_SANITIZE} -fno-omit-frame-pointer
                           -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${VEXA_SANITIZE})
  endif()
endfunction()
