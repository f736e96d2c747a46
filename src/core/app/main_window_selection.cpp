// The selection panel: what the window shows of the entry that was selected.
#include "core/app/main_window_model.h"
#include "core/cart/detect.h"
#include "core/cart/layout.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward {

void MainWindowModel::ShowRomInfo() {
  if (m_entries.empty()) {
    EnableFileMenus(false);
    return;
  }
  if (!m_selection) return;

  // An archive member is never opened here: it is only known by its name.
  std::string_view code = "ZIP";
  if (!IsZipListing()) {
    auto file = BinaryFile::Open(Utf8ToPath(JoinDirName(m_diret, SelectedText())));
    code = LayoutCode(file ? DetectRomFormat(*file) : Layout::NoRom);
  }
  m_texts.txtTipo = FormatDescription(code);
  EnableFileMenus(true);
  // The layout's menus, the header checks, the saved games and the cartridge's options
  // follow here as the panel grows.
}

}  // namespace romsteward
