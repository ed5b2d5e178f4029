#pragma once

#include <QObject>
#include <functional>

#include "core/inventory/adjust.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The fields with which stock is adjusted by hand. Which of them are there follows the settings of the inventory.
class AdjustEntry : public QObject {
  Q_OBJECT

 public:
  /// In `page`, which has no layout yet; `update` and `clear` are what the two buttons do.
  AdjustEntry(FormHost& host, Form form, QWidget& page, std::function<void()> update, std::function<void()> clear);

  /// Offers what the colour's list knows, and fills the fields; without a colour they are empty and off.
  void Show(const InventoryWork* work, const AdjustFields& fields);
  /// Offers the lot numbers and locations of the list, with new ones.
  void Offer(const InventoryWork& work);
  /// Units, and which fields there are, as the settings are now.
  void Relabel();

  /// What is typed, for row `selected`; nothing after a refusal was shown or a question was answered with No.
  std::optional<AdjustFields> Read(const InventoryWork& work, std::optional<std::size_t> selected);
  std::string QuantityText() const { return quantity_->Text(); }
  /// Something was typed or chosen since the fields were filled.
  bool IsTouched() const;
  void Focus();
  /// The last of the fields and buttons.
  QWidget* Last() const { return clear_; }

 private:
  void BuildFields(Form& form, QWidget& first, QWidget& second);
  void PriceChosen(int index);
  void OpenCalendar();
  void ShowDate();
  void QuantityLeft(QWidget* to);
  bool eventFilter(QObject* watched, QEvent* event) override;
  std::vector<Field*> Fields() const;

  FormHost& host_;
  const InventoryWork* work_ = nullptr;
  std::optional<std::size_t> selected_;
  std::optional<DateTime> date_;
  std::optional<DateTime> shownDate_;
  bool tracking_ = false;
  bool counted_ = false;  ///< stock is entered by unit weight and count

  NumberField* quantity_ = nullptr;
  ComboField* lotNumber_ = nullptr;
  ComboField* location_ = nullptr;
  TextField* container_ = nullptr;
  ComboField* count_ = nullptr;
  CommandButton* dateButton_ = nullptr;
  ComboField* price_ = nullptr;
  QLabel* priceBlocked_ = nullptr;
  CheckField* consignment_ = nullptr;
  CommandButton* update_ = nullptr;
  CommandButton* clear_ = nullptr;
  QLabel* quantityCaption_ = nullptr;
  QLabel* priceCaption_ = nullptr;
  std::vector<QWidget*> lotCells_;
  std::vector<QWidget*> countCells_;
};

}  // namespace vellumark::desktop
