#pragma once

#include "core/shell/undo.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

template <class Record>
class RecordRows;

/// What can be taken back: what was done, when, by whom. One click takes one of them back, as far as nothing else was
/// built on it.
class UndoForm : public Window {
  Q_OBJECT

 public:
  explicit UndoForm(WindowList& windowList);
  void UpdateEnabled() override;
  void OnOpen(const Arguments& arguments) override;
  void OnChanges(const std::vector<Change>& changes) override;

 public Q_SLOTS:
  void cmdTakeBack_Click();

 private:
  void ListActs();

  std::shared_ptr<RecordRows<UndoEntry>> acts_;
  Grid* list_ = nullptr;
  CommandButton* takeBack_ = nullptr;
};

}  // namespace vellumark::desktop
