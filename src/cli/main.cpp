#include <iostream>
#include <string>
#include <vector>

#include "cli/console.h"
#include "cli/tool.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  using namespace romsteward::cli;
  const ToolStreams streams{std::cin, std::cout, std::cerr, StandardStreamsAreTerminals(),
                            StandardErrorIsTerminal()};
  return RunTool(std::vector<std::string>(argv + 1, argv + argc), streams);
}
