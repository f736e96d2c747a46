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
    case Layout::Md: return BinToMd(logical);
    default: return std::string(logical);
  }
}

std::filesystem::path DefaultConvertOutput(const std::filesystem::path& source, Layout layout) {
  return Utf8ToPath(FileNameForLayout(PathToUtf8(source), layout));
}

Status ConvertImage(const std::filesystem::path& source, Layout layout,
                    const std::filesystem::path& output, bool overwrite) {
  if (layout != Layout::Bin && layout != Layout::Smd && layout != Layout::Md)
    return Error{"Images can only be converted to BIN, SMD or MD."};

  auto file = BinaryFile::Open(source);
  if (!file) return file.error();
  const Layout current = DetectRomFormat(*file);
  if (current == layout)
    return Error{PathToUtf8(source) + " is already in " + std::string(FormatDescription(layout)) +
                 " layout."};

  std::error_code error;
  if (std::filesystem::equivalent(source, output, error))
    return Error{"Converting " + PathToUtf8(source) +
                 " would replace it; name another output file."};
  if (std::filesystem::exists(output, error) && !overwrite)
    return Error{PathToUtf8(output) + " already exists."};

  auto logical = ReadLogicalImage(*file, current);
  if (!logical) return logical.error();
  return WriteFileAtomically(output, EncodeImage(*logical, layout));
}

}  // namespace romsteward
