#include "core/cart/convert.h"

#include <system_error>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/common/atomic_file.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

std::string EncodeImage(std::string_view logical, Layout layout) {
  switch (layout) {
    case Layout::Smd:
      return BuildSmdHeader(static_cast<std::int64_t>(logical.size() / kBlockSize), false) +
             BinToSmdData(logical);
    case Layout::Md:
      return BinToMd(logical);
    default:
      return std::string(logical);
  }
}

std::filesystem::path DefaultConvertOutput(const std::filesystem::path& source, Layout layout) {
  return Utf8ToPath(FileNameForLayout(PathToUtf8(source), layout));
}

Result<ConversionPlan> PlanConversion(const std::filesystem::path& source, Layout layout,
                                      const std::filesystem::path& output) {
  if (layout != Layout::Bin && layout != Layout::Smd && layout != Layout::Md)
    return Error{"Images can only be converted to BIN, SMD or MD."};
  auto file = BinaryFile::Open(source);
  if (!file) return file.error();
  ConversionPlan plan;
  plan.from = DetectRomFormat(*file);
  if (plan.from != Layout::Bin && plan.from != Layout::Smd && plan.from != Layout::Md)
    return Error{PathToUtf8(source) +
                 " is no BIN, SMD or MD image; only those can be converted (join a split set "
                 "first)."};
  std::error_code error;
  if (plan.from != layout && std::filesystem::equivalent(source, output, error))
    return Error{"Converting " + PathToUtf8(source) +
                 " would write over it, as its name already fits the new layout; rename it "
                 "first or name another output file."};
  plan.replacesOutput = std::filesystem::exists(output, error);
  return plan;
}

std::string AlreadyInLayoutMessage(const std::filesystem::path& source, Layout layout) {
  return PathToUtf8(source) + " is already in " + std::string(FormatDescription(layout)) +
         " layout.";
}

Status ConvertImage(const std::filesystem::path& source, Layout layout,
                    const std::filesystem::path& output, bool overwrite) {
  auto plan = PlanConversion(source, layout, output);
  if (!plan) return plan.error();
  if (plan->from == layout) return Error{AlreadyInLayoutMessage(source, layout)};
  if (plan->replacesOutput && !overwrite) return Error{PathToUtf8(output) + " already exists."};

  auto file = BinaryFile::Open(source);
  if (!file) return file.error();
  auto logical = ReadLogicalImage(*file, plan->from);
  if (!logical) return logical.error();
  return WriteFileAtomically(output, EncodeImage(*logical, layout));
}

}  // namespace romsteward
