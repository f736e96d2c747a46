#include "core/cart/convert_command.h"

#include "core/cart/convert.h"
#include "core/common/strings.h"
#include "core/host/host.h"

namespace romsteward {

namespace {

constexpr std::string_view kConvertTitle = "Convert";

}  // namespace

std::optional<std::filesystem::path> ConvertCommand(Host& host, const std::filesystem::path& source,
                                                    Layout layout) {
  const std::filesystem::path output = DefaultConvertOutput(source, layout);
  auto plan = PlanConversion(source, layout, output);
  if (!plan) {
    host.ShowMessage(plan.error().message, MessageIcon::Critical, kConvertTitle);
    return std::nullopt;
  }
  if (plan->from == layout) {
    host.ShowMessage(AlreadyInLayoutMessage(source, layout), MessageIcon::Information,
                     kConvertTitle);
    return std::nullopt;
  }
  if (plan->replacesOutput && host.AskYesNo("The file " + PathToUtf8(output.filename()) +
                                                " exists! Do you want to replace it?",
                                            MessageIcon::Question, kConvertTitle) != Answer::Yes)
    return std::nullopt;
  if (Status converted = ConvertImage(source, layout, output, true); !converted) {
    host.ShowMessage(converted.error().message, MessageIcon::Critical, kConvertTitle);
    return std::nullopt;
  }
  return output;
}

}  // namespace romsteward
