# What every target of ours is compiled with.

find_package(Threads REQUIRED)

function(vexa_configure_target target)
  # Named languages only: the resource compiler takes none of these.
  set(warnings -Wall -Wextra -Wpedantic -Wconversion)
  if(VEXA_WARNINGS_AS_ERRORS)
    list(APPEND warnings -Werror)
  endif()
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:C,CXX>:${warnings}>)
  if(WIN32)
    # XP's interfaces are enough, and the smaller windows.h keeps min, max and the like out.
    target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
      # Callers of 32-bit code need not keep the stack aligned to 16 bytes, which vector code
      # relies on.
      target_compile_options(${target} PRIVATE
                             $<$<COMPILE_LANGUAGE:C,CXX>:-mstackrealign -msse2 -mfpmath=sse>)
    endif()
    # One file to hand over: the compiler's run-time libraries are inside, and no symbols.
    target_link_options(${target} PRIVATE -static LINKER:--dynamicbase LINKER:--nxcompat
                        $<$<CONFIG:Release>:-s>)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
      target_link_options(${target} PRIVATE LINKER:--high-entropy-va)
    endif()
  endif()
  if(VEXA_SANITIZE)
    target_compile_options(${target} PRIVATE
                           $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=${VEXA_SANITIZE}
                           -fno-omit-frame-pointer -fno-sanitize-recover=all>)
    target_link_options(${target} PRIVATE -fsanitize=${VEXA_SANITIZE})
  endif()
endfunction()
