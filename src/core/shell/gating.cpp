#include "core/shell/gating.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "core/session/acts.h"
#include "core/session/users.h"
#include "core/settings/support_files.h"

namespace vellumark {
namespace {

// What the tests of the tables below look at, worked out once for all entries.
struct State {
  const Session& session;
  bool notArchive;
  bool working;  // record sets are open
  bool fileOpen;
  bool logged;
  bool users;  // the file has users

  bool MayDo(Act act) const { return vellumark::MayDo(session, act); }
};

State StateOf(const Session& session) {
  return {session,
          !session.ArchiveView,
          session.RecordsetsOpen,
          session.DataFileOpen,
          !session.CurrentUser.empty(),
          UsersEnabled(session)};
}

using Test = bool (*)(const State&);

bool Always(const State&) {
  return true;
}
bool Never(const State&) {
  return false;
}
bool NotArchive(const State& s) {
  return s.notArchive;
}
bool FileOpen(const State& s) {
  return s.fileOpen;
}
bool Logged(const State& s) {
  return s.logged;
}
bool IsAdministrator(const State& s) {
  return s.logged && s.session.IsAdminUser;
}
bool IsOtherUser(const State& s) {
  return s.logged && !s.session.IsAdminUser;
}
bool NoUser(const State& s) {
  return !s.logged;
}
template <Act act>
bool May(const State& s) {
  return s.MayDo(act);
}
template <Act act>
bool Working(const State& s) {
  return s.working && s.MayDo(act);
}
template <Act act>
bool WorkingWritable(const State& s) {
  return s.notArchive && Working<act>(s);
}

struct Entry {
  std::string_view name;
  std::string_view parent;
  std::string_view caption;
  Test enabled = Always;
  Test visible = Always;
  Test checked = nullptr;
};

const Entry kEntries[] = {
    {"MenuVK", "", "Vellumark"},
    {"menu_AboutVK", "MenuVK", "About"},
    {"menu_Updates", "MenuVK", "Updates"},
    {"menuFileExit", "MenuVK", "E&xit"},

    {"MenuDataFile", "", "Data File"},
    {"menuDFBackup", "MenuDataFile", "Backup", WorkingWritable<Act::BackUp>},
    {"menuDFBackup_Cloud", "menuDFBackup", "To Cloud"},
    {"menuDFBackup_Location", "menuDFBackup", "To File Location"},
    {"menuDFRestore", "MenuDataFile", "Restore", WorkingWritable<Act::BackUp>},
    {"menuDFRestore_Cloud", "menuDFRestore", "From Cloud"},
    {"menuDFRestore_Location", "menuDFRestore", "From File Location"},
    {"menuDFRestore_AutoBU", "menuDFRestore", "From Automatic Backup"},
    {"menuDFArchive", "MenuDataFile", "Archive", WorkingWritable<Act::BackUp>},
    {"menuDFCheck", "MenuDataFile", "Check", Working<Act::Look>},
    {"menuDFRepair", "MenuDataFile", "Repair", WorkingWritable<Act::Work>},
    {"menuDFExport", "MenuDataFile", "Export", Working<Act::ExportDataFile>},
    {"menuDFExport_Batches", "menuDFExport", "Batch Records"},
    {"menuDFExport_Jobs", "menuDFExport", "Job Records"},
    {"menuDFOptions", "MenuDataFile", "&Options", WorkingWritable<Act::Options>},
    {"menuDFOptions_Autofill", "menuDFOptions", "Autofill Text", Always, Always,
     [](const State& s) { return s.session.AutoFillText == 1; }},
    {"menuDFOptions_Reminders", "menuDFOptions", "Reminders"},
    {"menuDFOptions_DefaultPrinter", "menuDFOptions", "Default Printer"},
    {"menuDFOptions_InventorySettings", "menuDFOptions", "Inventory Settings"},
    {"menuDFOptions_UnitCostAccuracy", "menuDFOptions", "Unit Cost Accuracy"},
    {"menuDFOptions_NameLength", "menuDFOptions", "Name Length"},
    {"menuDFAdvanced", "MenuDataFile", "Advanced", May<Act::DataFiles>},
    {"menuDFAdvanced_FileNew", "menuDFAdvanced", "New Data File"},
    {"menuDFAdvanced_FileOpen", "menuDFAdvanced", "Open Data File"},
    {"menuDFAdvanced_Search", "menuDFAdvanced", "Search for Data Files", FileOpen},
    {"menuDFAdvanced_FileRename", "menuDFAdvanced", "Rename Data File", FileOpen},
    {"menuDFAdvanced_FileUpgrade", "menuDFAdvanced", "Upgrade Databases",
     [](const State& s) { return s.notArchive && s.fileOpen && !s.working; }},
    {"menuDFAdvanced_RestoreSupportFiles", "menuDFAdvanced", "Support Files"},
    {"menuDFAdvanced_CreateNewSupportFiles", "menuDFAdvanced_RestoreSupportFiles", "Create"},
    {"menuDFAdvanced_RestoreBU_SupportFiles", "menuDFAdvanced_RestoreSupportFiles", "Restore"},
    {"menuDFAdvanced_RestoreBU_SupportFiles_Cloud", "menuDFAdvanced_RestoreBU_SupportFiles", "From Cloud"},
    {"menuDFAdvanced_RestoreBU_SupportFiles_FLoc", "menuDFAdvanced_RestoreBU_SupportFiles", "From File Location"},
    {"menuDFAdvanced_RestoreBU_SupportFiles_AutoBackup", "menuDFAdvanced_RestoreBU_SupportFiles", "From Auto Backup"},
    {"menuDFUsers", "MenuDataFile", "Usernames / Passwords", FileOpen},
    {"menuDFUsers_Create", "menuDFUsers", "Create Users / Passwords", NotArchive, NoUser},
    {"menuDFUsers_Login", "menuDFUsers", "Log off / Log in as ...", NotArchive, Logged},
    {"menuDFUsers_Login_As", "menuDFUsers", "Login As ...", NotArchive, Logged},
    {"menuDFUsers_ChangePassword", "menuDFUsers", "Change Password", NotArchive, IsOtherUser},
    {"menuDFUsers_Permissions", "menuDFUsers", "View Permissions", NotArchive, Logged},
    {"menuDFUsers_AdminOptions", "menuDFUsers", "Admin Options", NotArchive, IsAdministrator},

    {"MenuDatabase", "", "Database"},
    {"menuDB_NewDB", "MenuDatabase", "&New",
     [](const State& s) { return s.fileOpen && s.notArchive && s.MayDo(Act::Databases); }},
    {"menuDB_RenameDB", "MenuDatabase", "Rename", WorkingWritable<Act::Databases>},
    {"menuDB_DeleteDB", "MenuDatabase", "&Delete", WorkingWritable<Act::Databases>},
    {"menuDB_BatchOptions_Cost", "MenuDatabase", "Batch Cost Calculation", WorkingWritable<Act::EditCosts>},
    {"menuDB_BatchOptions_VOCHAP", "MenuDatabase", "Batch VOC / HAP Calculation", WorkingWritable<Act::EditEmissions>},

    {"menuCloud", "", "Cloud"},
    {"menuCloud_About", "menuCloud", "About Service"},
    {"menuCloud_Settings", "menuCloud", "Settings", May<Act::Options>},
    {"menuCloudUser", "menuCloud", "User Utilities"},
    {"menuCloudUser_Reports", "menuCloudUser", "Manage Reports", May<Act::BackUp>},
    {"menuCloudUser_Backups", "menuCloudUser", "Manage Backups", May<Act::BackUp>},
    {"menuCloudUtilities", "menuCloud", "Admin Utilities"},
    {"menuCloudUtilities_Reports", "menuCloudUtilities", "Get User Reports", May<Act::BackUp>},
    {"menuCloudUtilities_DataFile", "menuCloudUtilities", "Get User Data File", May<Act::BackUp>},
    {"menuCloudUtilities_Upload", "menuCloudUtilities", "Upload Data File", May<Act::BackUp>},
    {"menuDFDFile", "menuCloudUtilities", "Open Default Data File", May<Act::DataFiles>},

    {"MenuHelp", "", "&Help"},
    {"menuHelp_Updates", "MenuHelp", "Updates"},
    {"menuHelp_Tutorials", "MenuHelp", "Website Tutorial Videos"},
    {"menuHelp_Barcode", "MenuHelp", "Barcode Scanning"},
    {"menuHelp_Excel", "MenuHelp", "Open Export File - Excel"},
    {"menu_Pantone", "MenuHelp", "&Pantone"},
    {"menu_Pantone_Disclaimer", "menu_Pantone", "Disclaimor"},

    {"menuScale", "", "&Scale"},
    {"menuScale_Setup", "menuScale", "Setup"},
    {"menuScale_PowerOn", "menuScale", "Power On", [](const State& s) { return s.session.ScalePowered != 1; }},
    {"menuScale_PowerOff", "menuScale", "Power Off", [](const State& s) { return s.session.ScalePowered == 1; }},

    // It stands in no bar. What of it can be used only the window knows that has the focus.
    {"menuHiddenMenu", "", "Edit", Always, Never},
    {"menuSaveRecord", "menuHiddenMenu", "Save"},
    {"menuDeleteRecord", "menuHiddenMenu", "Delete"},
    {"menuPrintRecord", "menuHiddenMenu", "Print"},
    {"MenuEditCut", "menuHiddenMenu", "Cut"},
    {"MenuEditCopy", "menuHiddenMenu", "Copy"},
    {"MenuEditPaste", "menuHiddenMenu", "Paste"},
};

std::string UsersCaption(const Session& session) {
  return fmt::format("[Username: {}{}]", session.CurrentUser, session.IsAdminUser ? " - ADMINISTRATOR" : "");
}

MenuItem ItemOf(const Entry& entry, const State& state) {
  const bool names = entry.name == "menuDFUsers" && state.logged;
  return {entry.name,           entry.parent,         names ? UsersCaption(state.session) : std::string(entry.caption),
          entry.enabled(state), entry.visible(state), entry.checked != nullptr && entry.checked(state)};
}

struct Button {
  std::string_view key;
  std::string_view target;
  Test enabled;
  Test visible = Always;
};

bool RecordsetsOpen(const State& s) {
  return s.working;
}

const std::array<Button, 10> kButtons{{
    {"InkEst", "InkEstForm", RecordsetsOpen},
    {"Color", "ColorsMenu", RecordsetsOpen},
    {"Batch", "BatchForm", RecordsetsOpen},
    {"Job", "JobMenu", RecordsetsOpen},
    {"Inventory", "AdjustInventoryForm", RecordsetsOpen},
    {"Label", "LabelMenu", RecordsetsOpen},
    {"Report", "ReportsForm", RecordsetsOpen},
    {"DBTools", "DBToolsMenu", Working<Act::FormulaTools>},
    {"Find", "FindMenu", RecordsetsOpen},
    {"Users", "LoginForm", FileOpen, [](const State& s) { return s.users; }},
}};

// A window whose unsaved work a command would disturb. Checked in this order.
struct Interlock {
  std::string_view way;  // a button, or a window that is opened otherwise
  std::string_view form;
  std::string_view title;
  std::string_view text;
};

constexpr std::string_view kFormulaTitle = "Master Formula Window - in State of Edit.";
constexpr std::string_view kBatchTitle = "Batch Window - in State of Edit.";
constexpr std::string_view kBatchText =
    "The Batch Window is open with active data.\nChanging data elsewhere can impact this recipe.\n"
    "Save or Clear the data on the Batch Window.";

constexpr std::array<Interlock, 7> kInterlocks{{
    {"Batch", "MixColorsForm", kFormulaTitle,
     "The Master Formula Window is open with active data.\nSave or Clear the data before using the Batch Window."},
    {"Batch", "JobForm", "Job Window - in State of Edit.",
     "The Job Window is open with active data.\nSave or Clear the data before using the Batch Window."},
    {"DBTools", "BatchForm", kBatchTitle, kBatchText},
    {"DBTools", "MixColorsForm", kFormulaTitle,
     "The Master Formula Window is open with active data.\nSave or Clear the data before using DB Tools."},
    {"Inventory", "BatchForm", kBatchTitle, kBatchText},
    {"InkEst", "BatchForm", kBatchTitle, kBatchText},
    {"JobForm", "BatchForm", kBatchTitle, kBatchText},
}};

}  // namespace

std::vector<MenuItem> MenuItems(const Session& session) {
  const State state = StateOf(session);
  std::vector<MenuItem> items;
  for (const Entry& entry : kEntries) items.push_back(ItemOf(entry, state));
  return items;
}

MenuItem MenuItemNow(const Session& session, std::string_view name) {
  const auto* entry = std::ranges::find(kEntries, name, &Entry::name);
  if (entry == std::end(kEntries)) throw std::logic_error("no menu item " + std::string(name));
  return ItemOf(*entry, StateOf(session));
}

std::vector<ToolbarButton> ToolbarButtons(const Session& session) {
  const State state = StateOf(session);
  std::vector<ToolbarButton> buttons;
  for (const Button& button : kButtons)
    buttons.push_back({button.key, button.target, button.enabled(state), button.visible(state)});
  return buttons;
}

Result<void> CheckToolbarButton(const Session& session, const OpenWindows& windows, std::string_view key) {
  if (std::ranges::find(kButtons, key, &Button::key) == kButtons.end())
    throw std::logic_error("no toolbar button " + std::string(key));
  if (key == "DBTools") {
    if (auto allowed = RequireAtDoor(session, Act::FormulaTools); !allowed) return allowed;
  }
  return CheckInterlocks(windows, key);
}

Result<void> CheckInterlocks(const OpenWindows& windows, std::string_view way) {
  for (const Interlock& lock : kInterlocks) {
    if (lock.way == way && windows.IsFormOpen(lock.form) && windows.IsInEdit(lock.form))
      return Refuse(std::string(lock.title), std::string(lock.text));
  }
  return {};
}

Result<void> CheckScaleSetup(const Session& session) {
  if (session.ScalePowered != 1) return {};
  return Refuse("Power off scale", "Power scale off to use the Setup feature");
}

}  // namespace vellumark
