#include "cli/image_check.h"

#include "core/cart/detect.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward::cli {

Result<Layout> CheckImage(const std::string& name) {
  auto file = BinaryFile::Open(Utf8ToPath(name));
  if (!file) return file.error();
  const Layout layout = DetectRomFormat(*file);
  if (layout == Layout::NoRom) return Error{EscapeForDisplay(name) + " is not a cartridge image."};
  if (!HoldsCartridgeHeader(*file, layout)) {
    return Error{EscapeForDisplay(name) + " is cut short: at " + FormatThousands(file->Size()) +
                 " bytes it ends before the cartridge header its layout (" +
                 std::string(LayoutCode(layout)) + ") puts there."};
  }
  return layout;
}

}  // namespace romsteward::cli
