#include "desktop/colors/mix_notes_panel.h"

#include <QTabWidget>
#include <utility>

#include "core/base/text.h"
#include "core/colors/formula_notes.h"
#include "desktop/kit/record_fields.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

MixNotesPanel::MixNotesPanel(FormHost& host, TabSet& tabs, BoundFields& bound, Ingredients ingredients)
    : QObject(&host.Self()), host_(host), tabs_(tabs.Widget()), ingredients_(std::move(ingredients)) {
  Form page = tabs.Page(tr("Notes"), "TabNotes");
  page.Wide(notes_ = bound.Bind("Notes", page.Note("txtNotes", 6)), 1);
  notes_->setAccessibleName(tr("Notes"));
  ofIngredients_ = ReadOnly(tabs.Page(tr("Ingredient notes"), "TabIngNotes"), "txtIngNotes", tr("Ingredient notes"));
  ofBatches_ = ReadOnly(tabs.Page(tr("Batch notes"), "TabBatchNotes"), "txtBatchNotes", tr("Batch notes"));
  connect(tabs_, &QTabWidget::currentChanged, this, &MixNotesPanel::ShowFront);
}

QPlainTextEdit* MixNotesPanel::ReadOnly(Form form, const QString& name, const QString& caption) {
  auto* text = new QPlainTextEdit;
  text->setObjectName(name);
  text->setAccessibleName(caption);
  text->setReadOnly(true);
  text->setTabChangesFocus(true);
  form.Wide(text, 1);
  return text;
}

void MixNotesPanel::Show(const std::string& colorName) {
  colorName_ = colorName;
  IngredientsChanged();
  BatchesChanged();
}

bool MixNotesPanel::HasNotes() const {
  return !Trim(notes_->Text()).empty();
}

void MixNotesPanel::IngredientsChanged() {
  ingredientsStale_ = true;
  ShowFront();
}

void MixNotesPanel::BatchesChanged() {
  batchesStale_ = true;
  ShowFront();
}

void MixNotesPanel::ShowFront() {
  const auto isFront = [this](QWidget* text) { return tabs_->currentWidget()->isAncestorOf(text); };
  if (ingredientsStale_ && isFront(ofIngredients_)) {
    ingredientsStale_ = false;
    ofIngredients_->setPlainText(Q(IngredientNotes(host_.session, ingredients_())));
  }
  if (!batchesStale_ || !isFront(ofBatches_)) return;
  batchesStale_ = false;
  QString text;
  for (const BatchNote& note : BatchNotes(host_.session, colorName_))
    text += tr("Batch %1, %2\n%3\n\n").arg(Q(note.Number()), DateText(note.Date_Entered), Q(note.Notes));
  ofBatches_->setPlainText(text.trimmed());
}

}  // namespace vellumark::desktop
