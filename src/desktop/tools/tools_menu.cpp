#include "desktop/tools/tools_menu.h"

#include <QKeyEvent>
#include <QLayout>
#include <array>

#include "core/session/acts.h"
#include "desktop/kit/menu_keys.h"

namespace vellumark::desktop {
namespace {

constexpr int kButtonWidth = 264;

struct Entry {
  const char* button;
  const char* caption;
  const char* window;
  const char* heading = nullptr;  ///< of the group that the entry begins
  bool isDialog = false;
};

constexpr std::array<Entry, 13> kEntries{{
    {"cmdAdditiveControl", QT_TRANSLATE_NOOP("DBToolsMenu", "&Additive Sets"), "DBAdditiveControl",
     QT_TRANSLATE_NOOP("DBToolsMenu", "Many colors at once")},
    {"cmdFormulaModifier", QT_TRANSLATE_NOOP("DBToolsMenu", "&Formula Modifier"), "DBFormulaModifierForm"},
    {"cmdRenameColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Rename Colors"), "DBRenameColors"},
    {"cmdDelColors", QT_TRANSLATE_NOOP("DBToolsMenu", "&Delete Master Formulas"), "DBDelColors"},
    {"cmdResetBasicCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Basic Color costs"), "ResetBasicCostForm",
     QT_TRANSLATE_NOOP("DBToolsMenu", "One figure of every color"), true},
    {"cmdResetMixCost", QT_TRANSLATE_NOOP("DBToolsMenu", "&Master Formula costs"), "ResetMixCostForm", nullptr, true},
    {"cmdResetBasicVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Basic Color &VOC and HAP"), "ResetBasic_VOC_HAP_Form",
     nullptr, true},
    {"cmdResetMixVOCHAP", QT_TRANSLATE_NOOP("DBToolsMenu", "Master Formula VOC and &HAP"), "ResetMixColor_VOC_HAP",
     nullptr, true},
    {"cmdExportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "Export Formu&las"), "DBExport_Formulas",
     QT_TRANSLATE_NOOP("DBToolsMenu", "Files")},
    {"cmdImportFormulas", QT_TRANSLATE_NOOP("DBToolsMenu", "&Import Formulas"), "DBImport_Formulas"},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("DBToolsMenu", "&Export Batch Records"), "ExportBatchesForm"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("DBToolsMenu", "Export &Job Records"), "ExportJobRecords"},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("DBToolsMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs"},
}};
constexpr std::size_t kFirstOfFiles = 8;

}  // namespace

DBToolsMenu::DBToolsMenu(WindowList& windowList)
    : Window(windowList, "DBToolsMenu", tr("DB Tools"), Stands::OverIt) {
  Form whole(*this);
  std::vector<Form> sides = whole.Columns(2);  // in one they would reach out of a small screen
  bool first = true;
  for (const Entry& entry : kEntries) {
    const std::string name = entry.window;
    if (!windows.Knows(name)) continue;
    Form& form = sides[&entry < &kEntries[kFirstOfFiles] ? 0 : 1];
    if (entry.heading != nullptr) form.Heading(tr(entry.heading));
    CommandButton* button = form.Button(entry.button, tr(entry.caption),
                                        [this, name, isDialog = entry.isDialog] { Choose(name, isDialog); });
    button->setMinimumWidth(kButtonWidth);
    form.Wide(button);
    if (first) button->setFocus();
    first = false;
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void DBToolsMenu::Choose(const std::string& name, bool isDialog) {
  if (!Accepted(RequireAtDoor(session, ActOfWindow(name).value_or(Act::FormulaTools)))) return;
  // This window is deleted by its close.
  WindowList& list = windows;
  if (!Leave()) return;
  if (isDialog) {
    list.RunDialog(name);
  } else {
    list.OpenForm(name);
  }
}

void DBToolsMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeMenuKey(*this, *event)) Window::keyPressEvent(event);
}

}  // namespace vellumark::desktop
