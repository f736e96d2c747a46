#include "core/cart/rom_size_check.h"

#include <algorithm>
#include <string>
#include <vector>

#include "core/cart/detect.h"
#include "core/cart/header.h"
#include "core/cart/interleave.h"
#include "core/cart/logical_io.h"
#include "core/cart/rom_size_repair.h"
#include "core/cart/split_set.h"
#include "core/common/strings.h"
#include "core/host/host.h"

namespace romsteward {

namespace {

constexpr std::string_view kTitle = "Error!";

std::uint64_t LessCopierHeader(std::uint64_t length) {
  return length > kCopierHeaderSize ? length - kCopierHeaderSize : 0;
}

// An intro or trainer announces its maker ("CRACKED BY ...") near the start of the file. The
// first block is taken as it lies in the file, copier header included, and put into plain order
// for SMD files only.
bool MentionsAuthor(const BinaryFile& file, Layout layout) {
  std::string first = file.ReadAt(0, kBlockSize);
  if (layout == Layout::Smd) {
    first.resize(kBlockSize, '\0');
    first = SmdBlockToBin(first);
  }
  return ToUpperAscii(first).find("BY") != std::string::npos;
}

std::string PromptText(const BinaryFile& file, Layout layout, bool longer) {
  if (!longer) {
    return "The ROM is shorter than it should be, according to the header. One of them is "
           "probably corrupt. Do you want to:";
  }
  if (MentionsAuthor(file, layout)) {
    return "ROM size is wrong! This ROM probably has an intro or trainer, i advise to fix the "
           "header. Do you want to:";
  }
  return "ROM size is wrong! This ROM can be destroyed if you truncate it. Do you want to:";
}

}  // namespace

std::uint64_t FileRomSize(const BinaryFile& file, Layout layout) {
  switch (layout) {
    case Layout::Smd:
      return LessCopierHeader(file.Size());
    case Layout::SplitFirst: {
      const std::string name = PathToUtf8(file.Path());
      const std::vector<std::string> volumes = ListSplitVolumes(name);
      if (std::find(volumes.begin(), volumes.end(), name) == volumes.end())
        return LessCopierHeader(file.Size());
      std::uint64_t total = 0;
      for (const std::string& volume : volumes) {
        std::error_code error;
        total += LessCopierHeader(std::filesystem::file_size(Utf8ToPath(volume), error));
      }
      return total;
    }
    default:
      return file.Size();
  }
}

RepairOutcome CheckRomSize(Host& host, const std::filesystem::path& image,
                           bool runFromCommandLine) {
  std::uint64_t fileSize;
  std::uint64_t headerSize;
  bool longer;
  QuestionBox box;
  {
    auto file = BinaryFile::Open(image);
    if (!file) {
      host.ShowMessage(file.error().message, MessageIcon::Critical, kTitle);
      return RepairOutcome::Failed;
    }
    const Layout layout = DetectRomFormat(*file);
    if (layout == Layout::NoRom) return RepairOutcome::Sound;
    fileSize = FileRomSize(*file, layout);
    headerSize = HeaderRomSize(ReadLogicalBytes(*file, layout, header_field::kRomRange.offset,
                                                header_field::kRomRange.width));
    if (headerSize == fileSize) return RepairOutcome::Sound;
    longer = headerSize < fileSize;
    if (longer && runFromCommandLine) return RepairOutcome::LeftAsIs;
    if (!IsWritableByUser(image)) {
      host.ShowMessage("ROM size is wrong! But you can't fix it while it's read-only!",
                       MessageIcon::Critical, kTitle);
      return RepairOutcome::LeftAsIs;
    }
    box.title = kTitle;
    box.text = PromptText(*file, layout, longer);
  }

  // The advised repair on the default button; cutting a file that is already short makes no
  // sense, so Truncate is only offered for a longer one.
  box.yes.caption = kFixHeaderCaption;
  box.no.caption = kTruncateCaption;
  box.no.hidden = !longer;
  const int answer = host.ShowQuestionBox(box);
  Status repaired;
  if (answer == kEscolhaYes) {
    repaired = FixHeaderRomSize(image, fileSize);
  } else if (answer == kEscolhaNo && longer) {
    repaired = TruncateRom(image, headerSize);
  } else {
    return RepairOutcome::LeftAsIs;
  }
  if (!repaired) {
    host.ShowMessage(repaired.error().message, MessageIcon::Critical, kTitle);
    return RepairOutcome::Failed;
  }
  return RepairOutcome::Repaired;
}

}  // namespace romsteward
