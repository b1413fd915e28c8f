# The target CLI11::CLI11 (command-line parsing, headers only) for every build.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
else()
  # Debian has the headers for the build machine only. They go into a folder of their own, since
  # /usr/include itself would bring this machine's system headers into the Windows build.
  find_path(VEXA_CLI11_HEADERS CLI/CLI.hpp PATHS /usr/include /usr/local/include NO_DEFAULT_PATH
            NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  file(COPY ${VEXA_CLI11_HEADERS}/CLI DESTINATION ${PROJECT_BINARY_DIR}/cli11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED GLOBAL)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/cli11)
endif()
