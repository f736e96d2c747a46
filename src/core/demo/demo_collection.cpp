#include "core/demo/demo_collection.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <system_error>

#include "core/cart/convert.h"
#include "core/cart/interleave.h"
#include "core/common/atomic_file.h"
#include "core/common/strings.h"
#include "core/demo/cartridge_builder.h"
#include "core/demo/demo_dat.h"

namespace romsteward {

namespace {

CartridgeSpec Cart(std::string maker, std::string name, std::string countries, std::string devices,
                   std::size_t kib, std::uint32_t seed) {
  CartridgeSpec spec;
  spec.makerDate = std::move(maker);
  spec.domesticName = name;
  spec.overseasName = std::move(name);
  spec.countries = std::move(countries);
  spec.devices = std::move(devices);
  spec.size = kib * 1024;
  spec.seed = seed;
  spec.serial = "0000" + std::to_string(1000 + seed);
  return spec;
}

}  // namespace

std::vector<std::string> BuildSplitVolumes(std::string_view logical, std::size_t volumeBytes) {
  std::vector<std::string> volumes;
  for (std::size_t at = 0; at < logical.size(); at += volumeBytes) {
    const std::string data =
        EncodeImage(logical.substr(at, volumeBytes), Layout::Smd).substr(kCopierHeaderSize);
    const bool more = at + volumeBytes < logical.size();
    const auto blocks = static_cast<std::int64_t>((data.size() + kCopierHeaderSize) / kBlockSize);
    volumes.push_back(BuildSmdHeader(blocks, more) + data);
  }
  return volumes;
}

Result<std::string> BuildZipArchive(const std::vector<std::pair<std::string, std::string>>& members,
                                    ArchiveFormat format) {
  using ArchivePtr = std::unique_ptr<archive, decltype(&archive_write_free)>;
  ArchivePtr writer(archive_write_new(), &archive_write_free);
  std::string zip;
  const auto append = [](archive*, void* target, const void* data, size_t size) -> la_ssize_t {
    static_cast<std::string*>(target)->append(static_cast<const char*>(data), size);
    return static_cast<la_ssize_t>(size);
  };
  const int formatSet = format == ArchiveFormat::SevenZip
                            ? archive_write_set_format_7zip(writer.get())
                            : archive_write_set_format_zip(writer.get());
  // No padding to the tape-era block size: the archive ends where its data does.
  if (formatSet != ARCHIVE_OK ||
      archive_write_set_bytes_in_last_block(writer.get(), 1) != ARCHIVE_OK ||
      archive_write_open(writer.get(), &zip, nullptr, append, nullptr) != ARCHIVE_OK)
    return Error{std::string("Cannot create a ZIP archive: ") + archive_error_string(writer.get())};

  for (const auto& [name, contents] : members) {
    std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                        &archive_entry_free);
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), static_cast<la_int64_t>(contents.size()));
    if (archive_write_header(writer.get(), entry.get()) != ARCHIVE_OK ||
        archive_write_data(writer.get(), contents.data(), contents.size()) < 0)
      return Error{"Cannot add " + name +
                   " to a ZIP archive: " + archive_error_string(writer.get())};
  }
  if (archive_write_close(writer.get()) != ARCHIVE_OK)
    return Error{std::string("Cannot finish a ZIP archive: ") + archive_error_string(writer.get())};
  return zip;
}

Status WriteDemoCollection(const std::filesystem::path& dir) {
  std::error_code error;
  std::filesystem::create_directories(dir, error);
  if (error) return Error{"Cannot create " + PathToUtf8(dir) + ": " + error.message()};

  std::vector<std::pair<std::string, std::string>> files;
  const auto add = [&files](std::string name, std::string bytes) {
    files.emplace_back(std::move(name), std::move(bytes));
  };

  const std::string starCourier =
      BuildCartridgeImage(Cart("(C)SEGA 1994.JAN", "STAR COURIER", "JUE", "J", 512, 1));
  const std::string harborLights =
      BuildCartridgeImage(Cart("(C)T-12 1992.FEB", "HARBOR LIGHTS", "U", "J6", 256, 2));
  const std::string quietOrbit =
      BuildCartridgeImage(Cart("(C)ACLD 1991.AUG", "QUIET ORBIT", "J", "JK", 256, 3));
  const std::string ironMeadow =
      BuildCartridgeImage(Cart("(C)T-81 1993.AUG", "IRON MEADOW", "E", "J4", 768, 4));
  const std::string tinSoldier =
      BuildCartridgeImage(Cart("(C)T-95 1992.NOV", "TIN SOLDIER", "U", "J", 128, 7));
  add("Star Courier (W).bin", starCourier);
  add("Harbor Lights (U).smd", EncodeImage(harborLights, Layout::Smd));
  add("Quiet Orbit (J).md", EncodeImage(quietOrbit, Layout::Md));

  const auto volumes = BuildSplitVolumes(ironMeadow, 256 * 1024);
  for (std::size_t i = 0; i < volumes.size(); ++i)
    add("Iron Meadow." + std::to_string(i + 1), volumes[i]);

  CartridgeSpec broken = Cart("(C) T-SNK 95/MAR", "BROKEN LANTERN", "E", "J", 256, 5);
  broken.wrongChecksum = true;
  add("Broken Lantern (E).bin", BuildCartridgeImage(broken));

  CartridgeSpec coral = Cart("(C)TREC 1993SEP", "CORAL ARCHIVE", "4", "JM", 384, 6);
  coral.backupRam = true;
  coral.productType = "AL";
  add("Coral Archive (B).bin", BuildCartridgeImage(coral));

  add("notes.txt",
      "This folder is the Genesis Romsteward demo collection.\n"
      "Every image in it was made up by the program itself.\n");

  auto zip = BuildZipArchive({
      {"Tin Soldier (U).bin", tinSoldier},
      {"Velvet Comet (J).smd",
       EncodeImage(BuildCartridgeImage(Cart("(C)WSTN 1991.DEC", "VELVET COMET", "J", "J6", 128, 8)),
                   Layout::Smd)},
  });
  if (!zip) return zip.error();
  add("Pocket Pair.zip", std::move(*zip));

  // Some of the collection under other names, some left out, and one damaged entry.
  add(std::string(kDemoDatName), BuildDemoDat({
                                     {"Star Courier (World) (Rev 1)", starCourier},
                                     {"Harbor Lights (USA)", harborLights},
                                     {"Quiet Orbit (Japan)", quietOrbit, true, false},
                                     {"Iron Meadow (Europe)", ironMeadow},
                                     {"Tin Soldier (USA)", tinSoldier, false, true},
                                 }));

  for (const auto& [name, bytes] : files) {
    if (Status written = WriteFileAtomically(dir / Utf8ToPath(name), bytes); !written)
      return written;
  }
  return {};
}

}  // namespace romsteward
