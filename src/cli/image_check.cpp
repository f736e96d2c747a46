#include "cli/image_check.h"

#include <ostream>

#include "core/cart/detect.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward::cli {

std::optional<Layout> CheckImage(const std::string& name, ToolContext& context) {
  auto file = BinaryFile::Open(Utf8ToPath(name));
  if (!file) {
    context.err << file.error().message << '\n';
    return std::nullopt;
  }
  const Layout layout = DetectRomFormat(*file);
  if (layout == Layout::NoRom) {
    context.err << EscapeForDisplay(name) << " is not a cartridge image.\n";
    return std::nullopt;
  }
  if (!HoldsCartridgeHeader(*file, layout)) {
    context.err << EscapeForDisplay(name) << " is cut short: at " << FormatThousands(file->Size())
                << " bytes it ends before the cartridge header its layout (" << LayoutCode(layout)
                << ") puts there.\n";
    return std::nullopt;
  }
  return layout;
}

}  // namespace romsteward::cli
