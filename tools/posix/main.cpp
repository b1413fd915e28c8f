#include <string>
#include <vector>

#include "application.hpp"

int main(int argc, char** argv) {
  return vexa::tool::Run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
