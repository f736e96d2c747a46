#include "core/cart/header_repair.h"

#include <algorithm>
#include <string>
#include <vector>

#include "core/cart/detect.h"
#include "core/cart/interleave.h"
#include "core/cart/split_set.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/host/host.h"
#include "core/settings/app_settings.h"

namespace romsteward {

namespace {

struct Volume {
  std::string name;
  bool moreVolumes = false;
};

// The files whose copier headers belong to the image: the plain SMD file itself, or every
// volume of its split set. A split volume outside a numbered set has no siblings to judge it
// by, so nothing of it is compared.
std::vector<Volume> VolumesOf(const std::string& name, Layout layout) {
  if (layout == Layout::Smd) return {{name, false}};
  const std::vector<std::string> names = ListSplitVolumes(name);
  if (std::find(names.begin(), names.end(), name) == names.end()) return {};
  std::vector<Volume> volumes;
  for (std::size_t i = 0; i < names.size(); ++i)
    volumes.push_back({names[i], i + 1 < names.size()});
  return volumes;
}

bool IsWholeBlocks(Layout layout, std::uint64_t length) {
  if (!IsSmdInterleaved(layout)) return length % kBlockSize == 0;
  // (length - 512) / 16384 as a real number: a negative one is not whole unless it is 0.
  return length >= kCopierHeaderSize && (length - kCopierHeaderSize) % kBlockSize == 0;
}

RepairOutcome WarnInvalidSize(Host& host, AppSettings& settings, std::string_view entry) {
  const std::string key = std::string(entry) + ".shutup";
  if (settings.Store().HasValue(SectionKeyPath(kSectionCartridge), key))
    return RepairOutcome::LeftAsIs;
  QuestionBox box;
  box.title = "Warning!";
  box.text =
      "This ROM has an unfixable error (invalid rom size), and probably will not work right.";
  box.yes.caption = "&Ok";
  box.no.hidden = true;
  box.cancel.caption = "&Shut Up!";
  if (host.ShowQuestionBox(box) == kEscolhaCancel &&
      !settings.SaveSetting(kSectionCartridge, key, "1"))
    host.ShowMessage("Error in system registry! Is it corrupt?", MessageIcon::Critical, {});
  return RepairOutcome::LeftAsIs;
}

Status WriteCopierHeader(const std::string& volume, const std::string& header) {
  auto file = BinaryFile::Open(Utf8ToPath(volume), BinaryFile::Mode::ReadWrite);
  if (!file) return file.error();
  return file->WriteAt(0, header);
}

}  // namespace

RepairOutcome CheckEmbeddedHeader(Host& host, AppSettings& settings,
                                  const std::filesystem::path& image, std::string_view entry) {
  Layout layout;
  std::uint64_t length;
  {
    auto file = BinaryFile::Open(image);
    if (!file) {
      host.ShowMessage(file.error().message, MessageIcon::Critical, {});
      return RepairOutcome::Failed;
    }
    layout = DetectRomFormat(*file);
    length = file->Size();
  }
  if (layout == Layout::NoRom) return RepairOutcome::Sound;
  if (!IsWholeBlocks(layout, length)) return WarnInvalidSize(host, settings, entry);
  if (!IsSmdInterleaved(layout)) return RepairOutcome::Sound;

  const bool split = IsSplitVolume(layout);
  const std::vector<Volume> volumes = VolumesOf(PathToUtf8(image), layout);
  RepairOutcome outcome = RepairOutcome::Sound;
  bool asked = false;
  bool fix = false;
  for (std::size_t i = 0; i < volumes.size(); ++i) {
    const Volume& volume = volumes[i];
    auto file = BinaryFile::Open(Utf8ToPath(volume.name));
    if (!file) {
      host.ShowMessage(file.error().message, MessageIcon::Critical, {});
      outcome = RepairOutcome::Failed;
      continue;
    }
    const auto blocks = static_cast<std::int64_t>(file->Size() / kBlockSize);
    const std::string expected = BuildSmdHeader(blocks, volume.moreVolumes);
    if (file->ReadAt(0, kCopierHeaderSize) == expected) continue;

    const std::string which = split ? " (volume " + std::to_string(i + 1) + ")" : "";
    if (!IsWritableByUser(Utf8ToPath(volume.name))) {
      host.ShowMessage(
          "The embedded SMD header is corrupt, but you can't fix it while this file is "
          "read-only!" +
              which,
          MessageIcon::Critical, {});
      outcome = std::max(outcome, RepairOutcome::LeftAsIs);
      continue;
    }
    // One question per check: the answer stands for every later corrupt volume of the set.
    if (!asked) {
      asked = true;
      fix = host.AskYesNo(
                "The embedded SMD header is corrupt!" + which + "\r\nDo you want to fix it?",
                MessageIcon::Question, {}) == Answer::Yes;
    }
    if (!fix) {
      outcome = std::max(outcome, RepairOutcome::LeftAsIs);
      continue;
    }
    if (Status written = WriteCopierHeader(volume.name, expected); !written) {
      host.ShowMessage(written.error().message, MessageIcon::Critical, {});
      outcome = RepairOutcome::Failed;
      continue;
    }
    outcome = std::max(outcome, RepairOutcome::Repaired);
  }
  return outcome;
}

}  // namespace romsteward
