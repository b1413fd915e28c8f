#include <string>
#include <vector>

#include "application.hpp"
#include "text.hpp"

// The narrow main() would get its arguments in the ANSI code page, which cannot hold every file
// name. wchar_t is a UTF-16 code unit here.
int wmain(int argc, wchar_t** argv) {
  std::vector<std::string> arguments;
  for (int i = 1; i < argc; ++i) {
    const std::wstring argument = argv[i];
    arguments.push_back(
        vexa::tool::Utf8FromUtf16(std::u16string(argument.begin(), argument.end())));
  }
  return vexa::tool::Run(arguments);
}
