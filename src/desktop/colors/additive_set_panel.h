#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "core/colors/additive_sets.h"
#include "desktop/kit/form.h"

class QStackedWidget;

namespace vellumark::desktop {

class NewAdditiveSetPanel;
class SetDetail;

/// The Additive Set of a formula: which one, what it holds, a look at any other one, and the fields of a new one.
class AdditiveSetPanel : public QObject {
  Q_OBJECT

 public:
  AdditiveSetPanel(FormHost& host, Form form);

  /// The set of the formula, as it is on file; empty for none.
  void Show(const std::string& setName);
  /// The set that stands chosen, as the operator's choice and not yet saved.
  void Choose(const std::string& setName);
  std::string Chosen() const;
  bool IsChanged() const;
  /// The sets of the Database again; what was chosen stays while it is there.
  void Refresh();
  void RenameSet(const std::string& oldName, const std::string& newName);
  /// `shown`: there is a formula. `editable`: its set can be chosen.
  void SetEditable(bool shown, bool editable);
  /// The ingredients of the chosen set.
  std::vector<std::string> Ingredients() const;

  NewAdditiveSetPanel& New() { return *new_; }
  void ShowNew();
  void ShowChosen();

 Q_SIGNALS:
  /// The operator chose a set, or none; whoever hears it calls Choose.
  void Picked(const std::string& setName);

 private:
  void BuildChosen(Form form);
  void BuildView(Form form);
  const AdditiveSet* Find(const std::string& setName) const;
  void FillLists();
  void FillView();

  FormHost& host_;
  std::vector<AdditiveSet> sets_;
  std::string chosen_;
  std::string onFile_;
  QStackedWidget* pages_;
  ComboField* list_ = nullptr;
  SetDetail* detail_ = nullptr;
  ComboField* viewed_ = nullptr;
  SetDetail* viewedDetail_ = nullptr;
  CommandButton* view_ = nullptr;
  CommandButton* create_ = nullptr;
  NewAdditiveSetPanel* new_ = nullptr;
};

}  // namespace vellumark::desktop
