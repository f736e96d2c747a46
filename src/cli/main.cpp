#include <iostream>
#include <string>
#include <vector>

#include "cli/tool.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return romsteward::cli::RunTool(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                  std::cerr);
}
