#include "core/app/window_controls.h"

#include <stdexcept>

namespace romsteward {

namespace {

struct InitialControl {
  std::string_view name;
  std::string_view caption;
  bool checked = false;
  bool visible = true;
};

// Items whose caption the window never changes carry it here only when the commands need
// it; the desktop program supplies the rest of its own menu texts.
constexpr InitialControl kInitialControls[] = {
    // Top menus switched as one by the file-menu state.
    {"mnu_file", "&File"},
    {"mnu_tool", "&Tools"},
    {"mnu_conv", "&Convert"},
    // Place and list.
    {"mnu_opendir", "Open ROM Directory..."},
    {"mnu_openzip", ""},
    {"mnu_settemp", "Set &temporary directory..."},
    {"mnu_dir", "&Directory"},
    {"mnu_dirs(0)", "", false, false},
    {"mnu_dirs(1)", "", false, false},
    {"mnu_dirs(2)", "", false, false},
    {"mnu_dirs(3)", "", false, false},
    {"mnu_dirs(4)", "", false, false},
    {"mnu_show", "Sho&w"},
    {"mnu_showsub(0)", "&All files"},
    {"mnu_showsub(1)", "&Rom files", true},
    {"mnu_sort", "&Sort ROMs by"},
    {"mnu_sortsub(0)", "&Name", true},
    {"mnu_sortsub(1)", "&Type"},
    {"mnuNomeCapt", "&Window's title"},
    {"mnuTitle(0)", "Overseas name", true},
    {"mnuTitle(1)", "Domestic name"},
    {"mnu_lista", "Create ROM List..."},
    // The options menu's checks, loaded at start-up.
    {"mnu_savcart", "Save Settings for All &Cartridges"},
    {"mnu_save", "Save Settings on E&xit"},
    {"mnu_tray", "Minimize in Tray"},
    // Items that follow the selection.
    {"mnu_savthiscart", "Save Settings for &This Cartridge"},
    {"mnu_addfav", "&Add to favorites..."},
    {"mnu_orgfav", "&Remove favorites..."},
    {"mnufavorite", "Fa&vorites"},
    {"mnu_del", "&Delete Settings of This Cartridge"},
    {"mnu_picprev", ""},
    {"mnu_previmg", ""},
    {"mnu_preview", "&Activated"},
    {"mnu_join", "&Join ROMs"},
    {"mnu_split", ""},
    {"mnu_crc", "Check CRC"},
    {"mnu_getcrc", "R&estore CRC"},
    {"mnu_header", ""},
    {"mnu_move", ""},
    {"mnu_delete", ""},
    {"mnu_ren", ""},
    {"mnu_patch", ""},
    {"mnu_ips2dyn", ""},
    {"mnu_tirapatch", ""},
    {"btnProp", ""},
    {"btnDeleta", ""},
    {"btnheader", ""},
    {"btncrc", ""},
    {"Btnlista", ""},
    {"BtnImagem", ""},
    {"CmdLaunch", "Run this game!"},
    {"chkIPS", "Activate dynamic patch"},
    {"CmdForce", "Force another language"},
    {"CmdCalib", "Calibrate Joystick"},
    {"cmdDeletaSave", ""},
    {"cmbSave", ""},
    {"cmbCartLang", ""},
};

}  // namespace

std::string ElementName(std::string_view arrayName, int index) {
  return std::string(arrayName) + "(" + std::to_string(index) + ")";
}

WindowControls::WindowControls() {
  for (const InitialControl& control : kInitialControls) {
    m_states.emplace(std::string(control.name), ControlState{std::string(control.caption), true,
                                                             control.checked, control.visible});
  }
}

ControlState& WindowControls::operator[](std::string_view name) {
  const auto it = m_states.find(name);
  if (it == m_states.end()) throw std::out_of_range("No window control " + std::string(name));
  return it->second;
}

const ControlState& WindowControls::operator[](std::string_view name) const {
  const auto it = m_states.find(name);
  if (it == m_states.end()) throw std::out_of_range("No window control " + std::string(name));
  return it->second;
}

bool WindowControls::Has(std::string_view name) const {
  return m_states.contains(name);
}

void WindowControls::SetEnabled(std::initializer_list<std::string_view> names, bool enabled) {
  for (std::string_view name : names)
    (*this)[name].enabled = enabled;
}

void WindowControls::CheckOnly(std::string_view arrayName, int index, int count) {
  for (int i = 0; i < count; ++i)
    (*this)[ElementName(arrayName, i)].checked = i == index;
}

int WindowControls::CheckedIndex(std::string_view arrayName, int count) const {
  for (int i = 0; i < count; ++i) {
    if ((*this)[ElementName(arrayName, i)].checked) return i;
  }
  return -1;
}

std::vector<std::string> WindowControls::Names() const {
  std::vector<std::string> names;
  for (const auto& [name, state] : m_states)
    names.push_back(name);
  return names;
}

}  // namespace romsteward
