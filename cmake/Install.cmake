# Installation, and the files by which other projects find the installed library.
include(CMakePackageConfigHelpers)

set(vexa_headers ${PROJECT_SOURCE_DIR}/include/VexaAPI.h)
if(NOT WIN32)
  list(APPEND vexa_headers ${PROJECT_SOURCE_DIR}/include/VexaHost.h)
endif()
install(FILES ${vexa_headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# Windows has no place for the documents of all programs; they stand at the top of our own.
set(vexa_documents_dir ${CMAKE_INSTALL_DOCDIR})
if(WIN32)
  set(vexa_documents_dir .)
endif()
# In the source tree's order, so that the links between the documents lead somewhere.
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/README.md
              ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${vexa_documents_dir})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
        DESTINATION ${vexa_documents_dir}
        FILES_MATCHING PATTERN *.md PATTERN *.c PATTERN *.cpp PATTERN *.py)
install(TARGETS VexaAPI EXPORT VexaAPITargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(WIN32)
  install(FILES ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/VexaAPI.lib
                ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/VexaAPI.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(vexa_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VexaAPI)
install(EXPORT VexaAPITargets NAMESPACE VexaAPI:: FILE VexaAPITargets.cmake
        DESTINATION ${vexa_package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/VexaAPIConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/VexaAPIConfig.cmake
                              INSTALL_DESTINATION ${vexa_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VexaAPIConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VexaAPIConfig.cmake
              ${PROJECT_BINARY_DIR}/VexaAPIConfigVersion.cmake DESTINATION ${vexa_package_dir})

# The way from the .pc file to the prefix, so that the installed tree can be moved.
file(RELATIVE_PATH vexa_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" vexa_pc_to_prefix "${vexa_pc_to_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/VexaAPI.pc.in ${PROJECT_BINARY_DIR}/VexaAPI.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/VexaAPI.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
