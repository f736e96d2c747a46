// The report template: splitting at the list markers and expanding every placeholder, with
// field values taken from the input as well (a value is never expanded again).
#include <cstdint>
#include <cstdlib>

#include "core/tools/report_template.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = fuzz::AsText(data, size);
  ReportRecord record;
  for (std::size_t i = 0; i < kPlaceholderCount; ++i)
    record.fields[i] = std::string(text.substr(0, i * 3 % 17));
  const auto pieces = SplitTemplate(text);
  const std::int64_t count = static_cast<std::int64_t>(size);
  if (!pieces) {
    (void)ExpandableText(text).Expand(record, count, -count);
    return 0;
  }
  for (const std::string* piece : {&pieces->header, &pieces->block, &pieces->footer}) {
    const std::string expanded = ExpandableText(*piece).Expand(record, count, count * 1024);
    // Each placeholder adds at most its longest value: nothing grows without bound.
    if (expanded.size() > piece->size() * 40 + 64) std::abort();
  }
  return 0;
}
