#pragma once

#include <QWidget>
#include <vector>

#include "core/batch/record.h"
#include "core/colors/ink.h"

class QLabel;

namespace vellumark::desktop {

class CellButton;
class IconView;
class SwatchView;

/// One of the row slots of the Batch: its kind by shape and word, the ink and the name of its colour, the marks, the
/// amount and its unit. The controls bear the slot's number: lblName0, lblAmount0, lblLot0, lblMoreUsable0, ImgInvLow0.
class RowView : public QWidget {
  Q_OBJECT

 public:
  RowView(int slot, QWidget* parent);

  struct Face {
    const BatchRow* row = nullptr;
    QString unit;
    QString amountHint;
    std::optional<Ink> ink;
    QString quickInfo;        ///< for the tooltip of the name; may be empty
    bool lotsChosen = false;  ///< with a lot link: the row's lots are all chosen
  };
  void Show(const Face& face);

  CellButton& Name() const { return *name_; }
  CellButton& Amount() const { return *amount_; }
  CellButton& Lot() const { return *lot_; }
  CellButton& MoreUsable() const { return *more_; }
  /// Those that the row shows now, from left to right.
  std::vector<CellButton*> Cells() const;

 private:
  IconView* kindIcon_;
  QLabel* kind_;
  SwatchView* ink_;
  CellButton* name_;
  CellButton* low_;
  CellButton* lot_;
  CellButton* more_;
  CellButton* amount_;
  QLabel* unit_;
};

}  // namespace vellumark::desktop
