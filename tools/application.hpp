/** The program behind the entry points of the systems. */
#pragma once

#include <string>
#include <vector>

namespace vexa::tool {

/** Runs a command line. @param arguments without the program's name, UTF-8.
 *  @return the exit code. */
int Run(const std::vector<std::string>& arguments);

}  // namespace vexa::tool
