// The IPS reader, the damage report and the applier writing into a small image.
#include <cstdint>
#include <cstdlib>

#include "core/patch/ips_apply.h"
#include "core/patch/ips_format.h"
#include "fuzz_support.h"

using namespace romsteward;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::MemoryFile image;
  const std::string_view patch = fuzz::AsText(data, size);
  const IpsContents contents = ParseIps(patch);
  for (const IpsRecord& record : contents.records) {
    // Every record must lie inside the patch it was read from.
    if (record.data.data() < patch.data() ||
        record.data.data() + record.data.size() > patch.data() + patch.size())
      std::abort();
  }
  (void)DescribeIpsDamage(contents, "fuzz.ips", "applied");

  image.Fill(std::string(4096, '\x5A'));
  auto file = BinaryFile::Open(image.Path(), BinaryFile::Mode::ReadWrite);
  if (!file) return 0;
  auto report = ApplyIps(patch, *file, "fuzz.ips");
  if (report && report->records != contents.records.size()) std::abort();
  return 0;
}
