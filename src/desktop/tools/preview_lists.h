#pragma once

#include <QObject>
#include <memory>
#include <string>
#include <vector>

#include "desktop/kit/form.h"

namespace vellumark::desktop {

class CheckedList;

/// One colour of a preview.
struct PreviewRow {
  std::string color;
  std::vector<std::string> cells;  ///< what stands in the columns behind the name
  bool modable = false;            ///< may stand among those that the tool changes
  bool taken = false;              ///< stands there
  std::string detail;              ///< shown below while the row has the frame
};

/// What a tool would do: the colours to be changed at the left, those left out at the right, and the commands that move
/// checked rows (or, without one, the row with the frame) between them. A row that is not modable stays at the right.
class PreviewLists : public QObject {
  Q_OBJECT

 public:
  struct Captions {
    QString taken;
    QString excluded;
  };
  /// `columns` stand behind the name.
  PreviewLists(FormHost& host, Form form, const Captions& captions, const std::vector<GridColumn>& columns);
  ~PreviewLists() override;

  void Show(std::vector<PreviewRow> rows);
  void Clear() { Show({}); }
  bool IsEmpty() const;
  /// The colours at the left, in the order of the preview.
  std::vector<std::string> Taken() const;
  /// The first list has the focus, its first row the frame.
  void TakeFocus();

 Q_SIGNALS:
  void TakenChanged();

 private:
  class Side;
  QWidget* BuildSide(Form& form, const QString& caption, const QString& name, bool taken,
                     const std::vector<GridColumn>& columns);
  CommandButton* BuildMove(Form& form, bool taken);
  void Move(bool toTaken);
  void ShowRows();
  void ShowDetail(const Side& side, int row);

  std::shared_ptr<std::vector<PreviewRow>> rows_;
  std::shared_ptr<Side> sides_[2];  // excluded, taken
  CheckedList* lists_[2] = {};
  QLabel* counts_[2] = {};
  CommandButton* moveLeft_ = nullptr;
  CommandButton* moveRight_ = nullptr;
  QLabel* detail_;
};

}  // namespace vellumark::desktop
