// romsteward-tool info: every decoded header field of each file, as text or JSON.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/image_check.h"
#include "cli/tool.h"
#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"

namespace romsteward::cli {

namespace {

struct InfoOptions {
  bool json = false;
  std::vector<std::string> files;
};

struct FileInfo {
  std::string file;
  Layout layout;
  CartridgeHeader header;
  unsigned sizeMbit;
};

nlohmann::ordered_json ToJson(const FileInfo& info) {
  const CartridgeHeader& h = info.header;
  // Header texts are single-byte characters; reading stray bytes as Latin-1 keeps the
  // output valid JSON without dropping anything.
  const auto text = [](const std::string& bytes) { return Latin1FallbackToUtf8(bytes); };
  return {
      {"file", text(info.file)},
      {"layout", std::string(LayoutCode(info.layout))},
      {"layoutName", std::string(FormatDescription(info.layout))},
      {"makerDate", text(h.makerDate)},
      {"domesticName", text(h.domesticName)},
      {"overseasName", text(h.overseasName)},
      {"productType", h.productType},
      {"serial", text(h.serial)},
      {"version", text(h.version)},
      {"checksum", h.checksum},
      {"devices", text(h.devices)},
      {"romStart", h.rom.start},
      {"romEnd", h.rom.end},
      {"romSize", h.romSize},
      {"sramStart", h.sram.start},
      {"sramEnd", h.sram.end},
      {"countries", text(h.countries)},
      {"sizeMbit", info.sizeMbit},
      {"error", nullptr},
  };
}

void PrintText(std::ostream& out, const FileInfo& info) {
  const CartridgeHeader& h = info.header;
  const auto line = [&out](std::string_view label, const std::string& value) {
    out << fmt::format("  {:<15}{}\n", label, value);
  };
  out << EscapeForDisplay(info.file) << '\n';
  line("Layout", fmt::format("{} ({})", LayoutCode(info.layout), FormatDescription(info.layout)));
  line("Maker and date", EscapeForDisplay(h.makerDate));
  line("Domestic name", EscapeForDisplay(h.domesticName));
  line("Overseas name", EscapeForDisplay(h.overseasName));
  line("Product type", h.productType);
  line("Serial", EscapeForDisplay(h.serial));
  line("Version", EscapeForDisplay(h.version));
  line("Checksum", fmt::format("{:X}", h.checksum));
  line("Devices", EscapeForDisplay(h.devices));
  line("ROM", fmt::format("{:06X}-{:06X} ({} bytes)", h.rom.start, h.rom.end, h.romSize));
  line("Backup RAM", fmt::format("{:06X}-{:06X}", h.sram.start, h.sram.end));
  line("Countries", EscapeForDisplay(h.countries));
  line("Size", fmt::format("{} Mbit", info.sizeMbit));
}

int RunInfo(const InfoOptions& options, ToolContext& context) {
  int status = kExitOk;
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  bool first = true;
  for (const std::string& name : options.files) {
    auto file = BinaryFile::Open(Utf8ToPath(name));
    if (!file) {
      context.err << file.error().message << '\n';
      // Listed all the same, so a script sees every file it named.
      if (options.json)
        all.push_back({{"file", Latin1FallbackToUtf8(name)}, {"error", file.error().message}});
      status = kExitError;
      continue;
    }
    const Layout layout = DetectRomFormat(*file);
    // Any file is described (its layout says when it is no image), but an image cut short
    // before its header is shown with a warning and counts as bad input.
    if (auto checked = CheckImage(name); layout != Layout::NoRom && !checked) {
      context.err << checked.error().message << '\n';
      status = kExitError;
    }
    const FileInfo info{name, layout, ReadCartridgeHeader(*file), RomSizeMbit(*file, name, layout)};
    if (options.json) {
      all.push_back(ToJson(info));
    } else {
      if (!first) context.out << '\n';
      PrintText(context.out, info);
    }
    first = false;
  }
  if (options.json) context.out << all.dump(2) << '\n';
  return status;
}

}  // namespace

void AddInfoCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* command = app.add_subcommand("info", "Show the layout and decoded header of images");
  command->add_flag("--json", options->json, "One JSON array of objects, one per file");
  command->add_option("files", options->files, "Image files")->required();
  command->callback([options, &context] { context.status = RunInfo(*options, context); });
}

}  // namespace romsteward::cli
