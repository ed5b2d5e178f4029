#pragma once

#include <QPointer>
#include <QWidget>
#include <optional>
#include <vector>

#include "core/batch/batch_options.h"
#include "desktop/batch/row_view.h"
#include "desktop/kit/form.h"

class QLabel;
class QScrollArea;

namespace vellumark::desktop {

/// The recipe on the bench: its title, the row slots, the total with the additions mark, the recycled percentage. One
/// stop of the Tab key: arrows walk through the cells, Enter is a click.
class RowsPanel : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kSlots = 22;

  /// `form` makes its buttons; the panel places them.
  RowsPanel(FormHost& host, Form& form, QWidget* parent);

  void Show(const BatchRecord& record);
  /// Another text where the colour's name stands, while it is worked out.
  void ShowTitle(const QString& text);
  /// The amount of that row, or of the last one; false without rows.
  bool FocusAmount(int row);
  /// The row that this cell stands in; nothing for any other widget.
  std::optional<std::size_t> RowOf(const QWidget* cell) const;
  /// The lot link of that row.
  void FocusLot(int row);

 Q_SIGNALS:
  void NameClicked(int row);
  void AmountClicked(int row);
  void LotsClicked(int row);
  void AdditionsClicked();
  void ModifiedClicked();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* BuildTitle(Form& form);
  QWidget* BuildTotal(Form& form);
  void Connect(RowView& view, int slot);
  void ShowRows(const BatchRecord& record);
  void SetCurrent(CellButton& cell);
  /// Which cell an arrow leads to; null when there is none.
  CellButton* Beside(CellButton& cell, int key) const;
  QString QuickInfoText(const BatchWork& work, std::size_t row, const BatchOptions& options) const;

  Session& session_;
  SwatchView* ink_;
  QLabel* title_;
  QLabel* guide_;
  CommandButton* modified_;
  QLabel* prevAdditions_;
  QScrollArea* scroll_;
  QLabel* empty_;
  std::vector<RowView*> slots_;
  QPointer<CellButton> current_;
  QWidget* totalRow_;
  QLabel* percent_;
  CellButton* total_;
  QLabel* unit_;
  QLabel* zeroMsg_;
};

}  // namespace vellumark::desktop
