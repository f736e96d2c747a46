#include "core/cart/layout.h"

#include "core/common/strings.h"

namespace romsteward {

namespace {

struct LayoutInfo {
  Layout layout;
  std::string_view code;
  std::string_view description;
};

constexpr LayoutInfo kLayouts[] = {
    {Layout::Bin, "BIN", "Super Magic Drive Binary (BIN)"},
    {Layout::Smd, "SMD", "Super Magic Drive Interleaved (SMD)"},
    {Layout::Md, "MD", "Multi Game Doctor (MD)"},
    {Layout::SplitFirst, "1", "Splitted Super Magic Drive Interleaved (SMD)"},
    {Layout::SplitLater, "1*", "Splitted Super Magic Drive Interleaved (SMD)"},
    {Layout::NoRom, "NOROM", "No rom"},
};

const LayoutInfo& InfoOf(Layout layout) {
  for (const LayoutInfo& info : kLayouts) {
    if (info.layout == layout) return info;
  }
  return kLayouts[5];
}

}  // namespace

std::string_view LayoutCode(Layout layout) {
  return InfoOf(layout).code;
}

Layout LayoutFromCode(std::string_view code) {
  const std::string upper = ToUpperAscii(code);
  for (const LayoutInfo& info : kLayouts) {
    if (info.code == upper) return info.layout;
  }
  return Layout::NoRom;
}

std::string_view FormatDescription(std::string_view code) {
  return InfoOf(LayoutFromCode(code)).description;
}

std::string_view FormatDescription(Layout layout) {
  return InfoOf(layout).description;
}

bool IsSmdInterleaved(Layout layout) {
  return layout == Layout::Smd || layout == Layout::SplitFirst || layout == Layout::SplitLater;
}

bool IsSplitVolume(Layout layout) {
  return layout == Layout::SplitFirst || layout == Layout::SplitLater;
}

std::string FileNameForLayout(std::string_view name, Layout layout) {
  std::string_view wanted;
  switch (layout) {
    case Layout::Bin:
      wanted = "bin";
      break;
    case Layout::Smd:
      wanted = "smd";
      break;
    case Layout::Md:
      wanted = "md";
      break;
    default:
      return std::string(name);
  }
  // Only the last component's extension counts: "dir.v2/game" has none.
  const auto slash = name.find_last_of("/\\");
  const std::string_view base = slash == std::string_view::npos ? name : name.substr(slash + 1);
  const auto dot = base.rfind('.');
  if (dot != std::string_view::npos) {
    const std::string_view current = base.substr(dot + 1);
    if (EqualsIgnoreCase(current, wanted) ||
        (layout == Layout::Md && EqualsIgnoreCase(current, "mgd")))
      return std::string(name);
    name.remove_suffix(current.size() + 1);
  }
  return std::string(name) + "." + std::string(wanted);
}

}  // namespace romsteward
