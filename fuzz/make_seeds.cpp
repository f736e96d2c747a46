// Writes the seed corpus of every fuzz target, made by the project's own builders: real
// images in each layout, patches, stored values, templates and archives.
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "core/cart/convert.h"
#include "core/common/atomic_file.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_collection.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/ips_create.h"
#include "core/tools/report_template.h"

using namespace romsteward;

namespace {

using Seeds = std::vector<std::pair<std::string, std::string>>;

// Small images keep the fuzzer's inputs short: one or two 16 KiB blocks.
std::string SmallImage(std::uint32_t seed, std::size_t blocks = 1) {
  CartridgeSpec spec;
  spec.size = blocks * 16 * 1024;
  spec.seed = seed;
  spec.backupRam = seed % 2 == 0;
  return BuildCartridgeImage(spec);
}

Seeds ImageSeeds() {
  const std::string plain = SmallImage(1);
  Seeds seeds = {{"bin", plain}, {"bin-2", SmallImage(2, 2)}, {"tiny", plain.substr(0, 0x200)}};
  for (const Layout layout : {Layout::Smd, Layout::Md})
    seeds.emplace_back(std::string(LayoutCode(layout)), EncodeImage(plain, layout));
  const auto volumes = BuildSplitVolumes(SmallImage(3, 2), 16 * 1024);
  if (!volumes.empty()) seeds.emplace_back("split-1", volumes.front());
  return seeds;
}

Seeds IpsSeeds() {
  std::string before = SmallImage(4);
  std::string after = before;
  for (const std::size_t at :
       {std::size_t{0x10}, std::size_t{0x18E}, std::size_t{0x2000}, std::size_t{0x3FFF}})
    after[at] = static_cast<char>(after[at] ^ 0x5A);
  Seeds seeds;
  if (auto patch = DiffToIps(before, after)) {
    seeds.emplace_back("patch", patch->bytes);
    seeds.emplace_back("cut", patch->bytes.substr(0, patch->bytes.size() - 6));
  }
  return seeds;
}

Seeds PatchValueSeeds() {
  return {{"plain", EncodePatchValue(PatchValue{0x18F, "\x12\x34", "\xAB\xCD"})},
          {"bars", EncodePatchValue(PatchValue{1, std::string("|\0|", 3), std::string("a\0b", 3)})},
          {"past-end", EncodePatchValue(PatchValue{4096, "\xFF\xFF\xFF\xFF", "\x01"})}};
}

Seeds TemplateSeeds() {
  std::string every = "%roms% images, %size%\r\n-BOL-";
  for (std::string_view placeholder : kPlaceholderTexts)
    every += std::string(placeholder) + " ";
  every += "%size%romtype%-EOL-footer";
  return {{"default", std::string(kDefaultReportTemplate)}, {"every", every}};
}

Seeds ArchiveSeeds() {
  const std::vector<std::pair<std::string, std::string>> members = {
      {"a.bin", SmallImage(5)}, {"sub/b.smd", "short"}, {"../up.bin", "x"}, {"c.txt", ""}};
  Seeds seeds;
  if (auto zip = BuildZipArchive(members)) seeds.emplace_back("zip", *zip);
  if (auto sevenZip = BuildZipArchive(members, ArchiveFormat::SevenZip))
    seeds.emplace_back("7z", *sevenZip);
  return seeds;
}

Seeds SettingsValueSeeds() {
  return {{"escaped", "name\\x00with\\xFFbytes\\\\"},
          {"number", " 12.5 "},
          {"true", "TRUE"},
          {"utf8", "caf\xC3\xA9\n"}};
}

Seeds GenIniSeeds() {
  return {{"empty", std::string("\0\0", 2)},
          {"kept-and-dropped", std::string("\x21\x10", 2) +
                                   "-res 320 240\r\n-nofm\r\n-setkey 1 2\r\n; comment\r\n"
                                   "-SAVEDIR c:\\saves\n-pcxdir\r"}};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s CORPUS-FOLDER\n", argv[0]);
    return 2;
  }
  const std::filesystem::path root = argv[1];
  const std::pair<const char*, Seeds> targets[] = {{"detect_header_fuzz", ImageSeeds()},
                                                   {"ips_fuzz", IpsSeeds()},
                                                   {"dynamic_patch_fuzz", PatchValueSeeds()},
                                                   {"report_template_fuzz", TemplateSeeds()},
                                                   {"archive_fuzz", ArchiveSeeds()},
                                                   {"settings_value_fuzz", SettingsValueSeeds()},
                                                   {"gen_ini_fuzz", GenIniSeeds()}};
  for (const auto& [target, seeds] : targets) {
    std::error_code error;
    std::filesystem::create_directories(root / target, error);
    for (const auto& [name, bytes] : seeds) {
      if (Status written = WriteFileAtomically(root / target / ("seed-" + name), bytes); !written) {
        std::fprintf(stderr, "%s\n", written.error().message.c_str());
        return 2;
      }
    }
  }
  return 0;
}
