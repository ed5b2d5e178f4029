#pragma once

#include <QWidget>

#include "core/base/changes.h"
#include "desktop/kit/window_list.h"

class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace vellumark::desktop {

/// What the main window shows while no other window is open: the Database at hand, what can be begun, and the colours
/// that have run low.
class StartPage : public QWidget {
  Q_OBJECT

 public:
  StartPage(WindowList& windowList, QWidget* parent);
  /// Reads everything anew, as soon as the program has nothing else to do.
  void Refresh();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Show();
  void ShowLowStock();
  QString BackupText() const;
  void OpenStock(QTableWidgetItem* activated);

  WindowList& windows_;
  Session& session_;
  QLabel* heading_;
  QLabel* facts_;
  QPushButton* makeBatch_;
  QLabel* lowHeading_;
  QLabel* lowNone_;
  QTableWidget* low_;
  Changes::Subscription changes_;
  bool stale_ = true;
};

}  // namespace vellumark::desktop
