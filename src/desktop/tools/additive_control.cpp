#include "desktop/tools/additive_control.h"

#include <QTabWidget>
#include <algorithm>

#include "core/base/text.h"
#include "core/colors/color_sheets.h"
#include "core/colors/rollup.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/tools/additive_apply_tab.h"
#include "desktop/tools/additive_create_tab.h"
#include "desktop/tools/tool_parts.h"

namespace vellumark::desktop {

DBAdditiveControl::DBAdditiveControl(WindowList& windowList)
    : Window(windowList, "DBAdditiveControl", tr("Database Additive Control")) {
  Form form(*this);
  TabSet tabs = form.Tabs("TabAdditive");
  create_ = new AdditiveCreateTab(*this, tabs.Page(tr("Create"), "CreateTab"));
  const auto all = findChildren<QShortcut*>();
  keys_[0].assign(all.begin(), all.end());
  apply_ = new AdditiveApplyTab(*this, tabs.Page(tr("Apply"), "ApplyTab"));
  for (QShortcut* key : findChildren<QShortcut*>())
    if (std::ranges::find(keys_[0], key) == keys_[0].end()) keys_[1].push_back(key);
  ToolButtons(*this, form,
              {apply_->SaveButton(), form.Button("cmdClose", tr("Close"), [this] { Leave(); }),
               print_ = form.Button("cmdPrint", tr("Print sets"))});
  connect(tabs.Widget(), &QTabWidget::currentChanged, this, &DBAdditiveControl::PageChanged);
  PageChanged(0);
}

void DBAdditiveControl::cmdPrint_Click() {
  PrintSheet(windows, AdditiveSetsSheet(session, ListAdditiveSets(session)));
}

void DBAdditiveControl::PageChanged(int page) {
  // Both pages have Ctrl+S; the keys are those of the page in front.
  for (const int one : {0, 1})
    for (QShortcut* key : keys_[one]) key->setEnabled(one == page);
  apply_->SaveButton()->setVisible(page == 1);
  if (!isVisible()) return;
  if (page == 0) {
    create_->TakeFocus();
  } else {
    apply_->TakeFocus();
  }
}

void DBAdditiveControl::UpdateEnabled() {
  create_->UpdateEnabled();
  apply_->UpdateEnabled();
  print_->setEnabled(CanPrint(windows));
}

void DBAdditiveControl::OnChanges(const std::vector<Change>& changes) {
  bool mine = false;
  for (const Change& change : changes) {
    const bool set = change.kind == Change::Kind::AdditiveSet;
    if ((!set && change.kind != Change::Kind::Mix && change.kind != Change::Kind::Basic) ||
        !EqualNoCase(change.database, session.CurrentDatabase))
      continue;
    mine = true;
    if (set && change.what == Change::What::Renamed) create_->Renamed(change.name, change.newName);
  }
  if (!mine) return;
  create_->Reload();
  apply_->Reload();
  Changed();
}

bool DBAdditiveControl::MayClose() {
  if (!create_->MayLeave()) return false;
  const auto wait = Wait(WaitKind::WaitingForm_NoCancel, tr("Updating Master Formulas ..."));
  RunPendingPasses(session);
  return true;
}

}  // namespace vellumark::desktop
