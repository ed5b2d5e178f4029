#pragma once

#include <memory>

#include "core/inventory/stock_history.h"
#include "desktop/kit/window.h"

class QLineEdit;

namespace vellumark::desktop {

/// The history of stock: when, who, what and why, of one colour or of the whole Database. Opened with {"Color_Name",
/// name} and {"Kind", ColorKind} it shows that colour's.
class StockHistoryForm : public Window {
  Q_OBJECT

 public:
  explicit StockHistoryForm(WindowList& windowList);
  ~StockHistoryForm() override;
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;
  void OnChanges(const std::vector<Change>& changes) override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdFind_Click();
  void cmdClear_Click();
  void cmdPrint_Click() override;
  void cmdTakeBack_Click();

 private:
  class Source;
  bool IsShown(const Change& change) const;
  StockHistoryFilter Filter() const;
  void LeadOn(int row);
  void ShowLines();
  void ShowCount();

  std::optional<std::string> shownName_;
  std::optional<ColorKind> shownKind_;
  std::shared_ptr<Source> source_;
  NameBox* name_;
  TextField* lot_;
  CommandButton* print_ = nullptr;
  CommandButton* takeBack_ = nullptr;
  Grid* list_;
  QLabel* count_;
};

}  // namespace vellumark::desktop
