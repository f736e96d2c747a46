#pragma once

#include <vector>

#include "core/launch/process_runner.h"

namespace romsteward::test {

/// A DetachedStarter that keeps what it was asked to start instead of starting it.
class RecordingStarter : public DetachedStarter {
public:
  Status StartDetached(const ProcessSpec& spec) override {
    started.push_back(spec);
    return {};
  }
  std::vector<ProcessSpec> started;
};

}  // namespace romsteward::test
