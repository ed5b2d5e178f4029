#include "desktop/tools/undo_form.h"

#include <QHeaderView>
#include <algorithm>

#include "core/shell/gating.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

UndoForm::UndoForm(WindowList& windowList)
    : Window(windowList, "UndoForm", tr("Take Back")), acts_(std::make_shared<RecordRows<UndoEntry>>(UndoColumns())) {
  setWindowIcon(Icon("DBTools"));
  Form form(*this);
  list_ = form.Table("fgUndo");
  list_->SetColumns(acts_->Columns());
  list_->SetSource(acts_);
  list_->View().horizontalHeader()->setStretchLastSection(true);
  list_->ShowFilter(tr("Filter"));
  list_->SetEmptyText(tr("Nothing was done that could be taken back"));
  list_->setAccessibleName(windowTitle());
  form.Wide(list_, 1);
  takeBack_ = form.Button("cmdTakeBack", tr("&Take back"));
  form.Buttons({takeBack_, form.Button("cmdClose", tr("Close"))});
  connect(list_, &Grid::RowActivated, this, &UndoForm::cmdTakeBack_Click);
  connect(list_, &Grid::CurrentRowChanged, this, [this] { Changed(); });
  ListActs();
}

void UndoForm::OnOpen(const Arguments&) {
  list_->setFocus();
}

void UndoForm::OnChanges(const std::vector<Change>&) {
  if (session.RecordsetsOpen) ListActs();
}

// The latest act is the one that is most often meant.
void UndoForm::ListActs() {
  const int row = list_->CurrentRow();
  const std::int64_t before = row < 0 ? 0 : acts_->rows.at(static_cast<std::size_t>(row)).id;
  acts_->rows = ListUndo(session);
  list_->Refresh();
  const auto same = std::ranges::find(acts_->rows, before, &UndoEntry::id);
  const bool stays = before != 0 && same != acts_->rows.end();
  if (!acts_->rows.empty()) list_->SetCurrentRow(stays ? static_cast<int>(same - acts_->rows.begin()) : 0);
  Changed();
}

void UndoForm::UpdateEnabled() {
  if (takeBack_ != nullptr) takeBack_->setEnabled(list_->CurrentRow() >= 0 && !session.ArchiveView);
}

void UndoForm::cmdTakeBack_Click() {
  const int row = list_->CurrentRow();
  if (row < 0 || session.ArchiveView) return;
  const UndoEntry act = acts_->rows.at(static_cast<std::size_t>(row));
  // What is being edited would lose its ground.
  if (!Accepted(CheckInterlocks(OpenFormsOf(windows), "DBTools"))) return;
  if (!session.prompt.Ask(U8(windowTitle()), U8(tr("Take this back?\n\n%1").arg(Q(act.what))), Answer::No)) return;
  auto wait = Wait(WaitKind::WaitingForm, tr("Taking back ..."));
  if (!Accepted(TakeBackAct(session, act.id))) return;
  list_->SetCurrentRow(-1);
  ListActs();
}

}  // namespace vellumark::desktop
