#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/common/result.h"
#include "core/tools/report_generator.h"

namespace romsteward {

class AppSettings;
class Host;

/// One entry of the form's Insert menu: its caption and the text it types at the cursor.
struct InsertMenuItem {
  std::string_view caption;
  std::string_view text;
};
/// The Insert menu, in menu order ("&Game name" opens "&Domestic" and "&Overseas").
const std::vector<InsertMenuItem>& ReportInsertMenu();

inline constexpr std::string_view kRomNameWarning =
    "  Warning! This option isn't anymore supported! It's still avaliable for compatibility "
    "with old scripts, that uses the %romname% command! It's better to remove this command "
    "from your script!";

/// Writes `data` over the start of `target` and keeps whatever the file held beyond it, as
/// a file opened for writing without being emptied would; the result is written through a
/// temporary file, so a failure leaves the old file whole.
Status WriteOverKeepingTail(const std::filesystem::path& target, std::string_view data);

/// The "Create ROM list" form without a screen: its template text, its "Name do Include"
/// choice and its commands.
class RomListForm {
public:
  RomListForm();

  /// The template being edited (`Text1`).
  const std::string& Text() const { return m_text; }
  void SetText(std::string text) { m_text = std::move(text); }

  RomNameChoice RomName() const { return m_romName; }
  /// A choice under "&Name do Include": the warning, then the radio change.
  void ChooseRomName(Host& host, RomNameChoice choice);

  /// "Save...": the template into a script file.
  void SaveScript(Host& host);
  /// "Open...": the template becomes the whole script file.
  void OpenScript(Host& host);

  /// The create button: checks the markers, asks for the output file and writes the report
  /// of `source`, extracting archive members into the `temp` folder of `settings`.
  void CreateList(Host& host, const AppSettings& settings, const RomListSource& source);

private:
  std::string m_text;
  RomNameChoice m_romName = RomNameChoice::Overseas;
};

}  // namespace romsteward
