#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "desktop/kit/bound_fields.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The three pages of notes: the formula's own, those of its ingredients, those of its Batches. The last two are read
/// when their page is looked at.
class MixNotesPanel : public QObject {
  Q_OBJECT

 public:
  using Ingredients = std::function<std::vector<std::string>()>;

  /// The formula's own notes go to `bound`.
  MixNotesPanel(FormHost& host, TabSet& tabs, BoundFields& bound, Ingredients ingredients);

  /// The other two pages, of that formula; of none when the name is empty.
  void Show(const std::string& colorName);
  bool HasNotes() const;
  /// Read again what stands on the page in front, the other one when it comes to the front.
  void IngredientsChanged();
  void BatchesChanged();

 private:
  QPlainTextEdit* ReadOnly(Form form, const QString& name, const QString& caption);
  void ShowFront();

  FormHost& host_;
  QTabWidget* tabs_;
  Ingredients ingredients_;
  std::string colorName_;
  NoteField* notes_ = nullptr;
  QPlainTextEdit* ofIngredients_ = nullptr;
  QPlainTextEdit* ofBatches_ = nullptr;
  bool ingredientsStale_ = false;
  bool batchesStale_ = false;
};

}  // namespace vellumark::desktop
