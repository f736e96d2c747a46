// romsteward-tool patch: list, add and remove an image's dynamic patches, or make them from
// an IPS file. The image is named by its path; its patches are filed under its file name.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <ostream>

#include "cli/exit_status.h"
#include "cli/json_output.h"
#include "cli/tool.h"
#include "core/common/binary_file.h"
#include "core/common/strings.h"
#include "core/patch/dynamic_patches.h"
#include "core/patch/ips_format.h"
#include "core/patch/patch_commands.h"
#include "core/patch/patch_dialog_model.h"
#include "core/settings/app_settings.h"

namespace romsteward::cli {

namespace {

struct PatchOptions {
  std::string file;
  std::string name;
  std::string position;
  std::string value;
  std::string ips;
  std::string baseName;
  bool json = false;
};

// The text the image is listed under, which its patches are filed by.
std::string ListText(const std::string& file) {
  return PathToUtf8(Utf8ToPath(file).filename());
}

using LaunchPatches = std::vector<std::pair<std::string, std::string>>;

std::string Hex(std::string_view bytes) {
  return bytes.empty() ? "-" : TextToHex(bytes);
}

void PrintPatch(std::ostream& out, std::string_view name, std::string_view data) {
  const auto patch = DecodePatchValue(data);
  if (!patch) {
    out << fmt::format("  {}: {}\n", EscapeForDisplay(name), kMalformedPatch);
    return;
  }
  out << fmt::format("  {}: at {:X}, {} byte{}, new {}, old {}\n", EscapeForDisplay(name),
                     patch->position - 1, patch->newBytes.size(),
                     patch->newBytes.size() == 1 ? "" : "s", Hex(patch->newBytes),
                     Hex(patch->oldBytes));
}

// Whether a stored value is one of the image's own patches ("image|name"), not a patch of a
// longer name beginning with it.
bool IsOwnPatchValue(std::string_view valueName, std::string_view listText) {
  const auto separator = valueName.find('|');
  return separator != std::string_view::npos &&
         EqualsIgnoreCase(valueName.substr(0, separator), listText);
}

Json PatchJson(std::string_view name, std::string_view data) {
  const auto patch = DecodePatchValue(data);
  if (!patch)
    return {{"name", JsonText(name)},
            {"position", nullptr},
            {"newBytes", nullptr},
            {"oldBytes", nullptr},
            {"error", kMalformedPatch}};
  return {{"name", JsonText(name)},
          {"position", patch->position - 1},
          {"newBytes", TextToHex(patch->newBytes)},
          {"oldBytes", TextToHex(patch->oldBytes)},
          {"error", nullptr}};
}

// The same facts as RunList's text: the image's own patches, then the others applied at
// launch.
int PrintListJson(const RegistryStore& store, const std::string& listText,
                  const std::vector<std::string>& own, const LaunchPatches& launch,
                  ToolContext& context) {
  Json patches = Json::array();
  for (const std::string& name : own) {
    const auto data = store.GetValue(PatchKeyPath(), PatchValueName(listText, name));
    patches.push_back(PatchJson(name, data ? *data : std::string()));
  }
  Json also = Json::array();
  for (const auto& [valueName, data] : launch) {
    if (!IsOwnPatchValue(valueName, listText)) also.push_back(PatchJson(valueName, data));
  }
  PrintJson(context.out,
            {{"image", JsonText(listText)}, {"patches", patches}, {"alsoAtLaunch", also}});
  return kExitOk;
}

int RunList(const PatchOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return kExitError;
  const RegistryStore& store = settings->Store();
  const std::string listText = ListText(options.file);
  const auto launch = PatchesForLaunch(store, listText);
  const auto own = ListDynamicPatchNames(store, listText);
  if (options.json)
    return PrintListJson(store, listText, own, launch ? *launch : LaunchPatches{}, context);
  if (own.empty() && (!launch || launch->empty())) {
    context.out << "No dynamic patches found\n";
    return kExitOk;
  }
  context.out << EscapeForDisplay(listText) << ":\n";
  for (const std::string& name : own) {
    const auto data = store.GetValue(PatchKeyPath(), PatchValueName(listText, name));
    PrintPatch(context.out, name, data ? *data : std::string());
  }
  // Values of longer names that begin with this one are applied at launch too.
  bool headed = false;
  for (const auto& [valueName, data] : launch ? *launch : LaunchPatches{}) {
    if (IsOwnPatchValue(valueName, listText)) continue;
    if (!std::exchange(headed, true)) context.out << "Also applied at launch:\n";
    PrintPatch(context.out, valueName, data);
  }
  return kExitOk;
}

int RunAdd(const PatchOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return kExitError;
  auto dialog = PatchDialogModel::Load(context.host(), settings->Store(), Utf8ToPath(options.file),
                                       ListText(options.file));
  if (!dialog) {
    context.err << dialog.error().message << '\n';
    return kExitError;
  }
  dialog->SetName(options.name);
  dialog->SetPosition(options.position);
  dialog->SetValue(options.value);
  if (!dialog->Save()) return kExitError;
  context.out << fmt::format("Saved dynamic patch '{}' of {}\n", EscapeForDisplay(options.name),
                             EscapeForDisplay(ListText(options.file)));
  return kExitOk;
}

int RunRemove(const PatchOptions& options, ToolContext& context) {
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return kExitError;
  const std::string listText = ListText(options.file);
  bool found = false;
  for (const std::string& name : ListDynamicPatchNames(settings->Store(), listText)) {
    found = found || EqualsIgnoreCase(name, options.name);
  }
  if (!found) {
    context.err << fmt::format("No dynamic patch '{}' found for {}\n",
                               EscapeForDisplay(options.name), EscapeForDisplay(listText));
    return kExitError;
  }
  if (context.host().AskYesNo(RemovalQuestion(options.name), MessageIcon::Question, {}) !=
      Answer::Yes) {
    context.out << "Nothing removed\n";
    return kExitOk;
  }
  if (!RemoveDynamicPatch(settings->Store(), listText, options.name)) {
    context.err << kRegistryError << '\n';
    return kExitError;
  }
  context.out << fmt::format("Removed dynamic patch '{}'\n", EscapeForDisplay(options.name));
  return kExitOk;
}

int RunFromIps(const PatchOptions& options, ToolContext& context) {
  const std::string_view baseName = TrimBlanks(options.baseName);
  if (baseName.empty()) {
    context.err << "The base name of the patches is empty\n";
    return kExitError;
  }
  auto ips = ReadWholeFile(Utf8ToPath(options.ips));
  if (!ips) {
    context.err << ips.error().message << '\n';
    return kExitError;
  }
  if (auto image = BinaryFile::Open(Utf8ToPath(options.file)); !image) {
    context.err << image.error().message << '\n';
    return kExitError;
  }
  AppSettings* settings = context.SettingsOrReport();
  if (!settings) return kExitError;
  const CommandResult result =
      StoreIpsAsDynamicPatches(context.host(), settings->Store(), Utf8ToPath(options.file),
                               ListText(options.file), *ips, options.ips, baseName);
  if (result != CommandResult::Done) return ExitStatusFor(result);
  // A patch that could not be read to its end was reported above; it is bad input even
  // when its complete records were kept.
  const IpsEnd end = ParseIps(*ips).end;
  return end == IpsEnd::Truncated || end == IpsEnd::TooShort ? kExitError : kExitOk;
}

}  // namespace

void AddPatchCommand(CLI::App& app, ToolContext& context) {
  auto options = std::make_shared<PatchOptions>();
  CLI::App* patch = app.add_subcommand("patch", "Dynamic patches: bytes changed only for a run");
  patch->require_subcommand(1);
  const auto addFile = [&options](CLI::App* command) {
    command->add_option("file", options->file, "The image (its file name keys the patches)")
        ->required();
  };

  CLI::App* list = patch->add_subcommand("list", "Show the image's patches");
  list->add_flag("--json", options->json, "One JSON object: the image's patches");
  addFile(list);
  list->callback([options, &context] { context.status = RunList(*options, context); });

  CLI::App* add = patch->add_subcommand("add", "Store a patch, as the patching window does");
  addFile(add);
  add->add_option("name", options->name, "Patch name; an existing one is replaced")->required();
  add->add_option("position", options->position, "Zero-based byte position, hexadecimal")
      ->required();
  add->add_option("value", options->value, "New bytes, hexadecimal")->required();
  add->callback([options, &context] { context.status = RunAdd(*options, context); });

  CLI::App* remove = patch->add_subcommand("remove", "Remove a patch after confirmation");
  addFile(remove);
  remove->add_option("name", options->name, "Patch name")->required();
  remove->callback([options, &context] { context.status = RunRemove(*options, context); });

  CLI::App* fromIps =
      patch->add_subcommand("from-ips", "Store each record of an IPS file as a patch");
  addFile(fromIps);
  fromIps->add_option("ips", options->ips, "The IPS file")->required();
  fromIps->add_option("basename", options->baseName, "Patches are named BASENAME0, 1, ...")
      ->required();
  fromIps->callback([options, &context] { context.status = RunFromIps(*options, context); });
}

}  // namespace romsteward::cli
