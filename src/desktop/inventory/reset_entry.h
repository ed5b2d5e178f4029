#pragma once

#include <QObject>
#include <functional>

#include "core/inventory/stock_resets.h"
#include "desktop/inventory/lot_grid.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// What is done to the checked rows of an inventory list, in the list and in the file at once.
class ResetEntry : public QObject {
  Q_OBJECT

 public:
  /// In `page`, which has no layout yet; `checkAll` checks all rows in sight, or none.
  ResetEntry(FormHost& host, Form form, QWidget& page, std::function<void(bool)> checkAll);

  /// The list and its checked rows, which both have to live longer; without a list all is off.
  void Show(InventoryWork* work, LotSource& rows);

 Q_SIGNALS:
  /// The list has changed.
  void Done();

 private:
  void ResetInventories();
  void ResetDates();
  void ResetPrices();
  void ChooseDate();
  void PriceChosen(int index);
  void Finish(const Result<bool>& reset, bool rowsGone);

  FormHost& host_;
  InventoryWork* work_ = nullptr;
  LotSource* rows_ = nullptr;
  DateTime date_;
  CommandButton* dateButton_ = nullptr;
  ComboField* price_ = nullptr;
  CommandButton* resetPrice_ = nullptr;
  std::vector<QWidget*> all_;
};

}  // namespace vellumark::desktop
