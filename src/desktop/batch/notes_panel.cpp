#include "desktop/batch/notes_panel.h"

#include "core/batch/bench.h"
#include "core/batch/more_data.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

NotesPanel::NotesPanel(FormHost& host, BatchRecord& record) : host_(host), record_(record) {
  setObjectName("NotesPanel");
  Form form(host, *this);
  shortNote_ = form.Text("txtShortNote", TextRule::Any(kBatchTextWidth));
  shortNote_->setMinimumWidth(120);
  moreData_ = form.Button("cmdMoreData", tr("&More Data"), Qt::Key_F9, [this] { Q_EMIT MoreDataClicked(); });
  form.Row(tr("S&hort note"), {shortNote_, moreData_});
  form.Row(tr("Batch note"), notes_ = form.Note("txtNotes", 2));
  form.Row(tr("Ingredient notes"), ingNotes_ = form.Note("txtIngNotes", 2));
  form.Row(tr("Formula notes"), formulaNotes_ = form.Note("txtFormulaNotes", 2));
  formulaNotes_->setReadOnly(true);
  formulaNotes_->setToolTip(tr("The notes of the Master Formula; they are changed in its own window"));
  connect(shortNote_, &QLineEdit::textChanged, this, [this] { Keep("ShortNote", shortNote_->Text()); });
  connect(notes_, &QPlainTextEdit::textChanged, this, [this] { Keep("Notes", notes_->Text()); });
  connect(ingNotes_, &QPlainTextEdit::textChanged, this, [this] { Keep("IngNotes", ingNotes_->Text()); });
}

void NotesPanel::Keep(const char* column, std::string text) {
  if (showing_) return;
  const Result<void> entered = EnterBatchField(host_.session, record_, column, std::move(text));
  if (entered) return;
  Show();
  host_.ShowRefusal(entered.error());
}

void NotesPanel::Show() {
  showing_ = true;
  if (shortNote_->Text() != record_.fields.ShortNote) shortNote_->SetText(record_.fields.ShortNote);
  // Set only when they differ: a text set anew would lose the place of its cursor.
  if (notes_->Text() != record_.fields.Notes) notes_->SetText(record_.fields.Notes);
  if (ingNotes_->Text() != record_.fields.IngNotes) ingNotes_->SetText(record_.fields.IngNotes);
  if (formulaNotes_->Text() != record_.work.formula.Notes) formulaNotes_->SetText(record_.work.formula.Notes);
  const bool open = record_.state != BatchState::None;
  const bool fixed = !TakesChanges(host_.session, record_);
  shortNote_->setReadOnly(fixed);
  notes_->setReadOnly(fixed);
  ingNotes_->setReadOnly(fixed);
  shortNote_->setEnabled(open);
  notes_->setEnabled(open);
  ingNotes_->setEnabled(open);
  moreData_->setEnabled(open && host_.windows.Knows("MoreDataForm"));
  showing_ = false;
}

}  // namespace vellumark::desktop
