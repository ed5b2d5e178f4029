#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "core/base/changes.h"
#include "desktop/kit/window_list.h"

class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace vellumark::desktop {

class Grid;

/// What the main window shows while no other window is open: the Database at hand, what can be begun, today's Batches,
/// one that is still open, the colours that have run low; in an empty Database the first three steps.
class StartPage : public QWidget {
  Q_OBJECT

 public:
  /// `find` is what the button for finding anything does, `change` goes to another Database.
  StartPage(WindowList& windowList, QWidget* parent, std::function<void()> find,
            std::function<void(const QString& database)> change);
  ~StartPage() override;
  /// Reads everything anew, as soon as the program has nothing else to do.
  void Refresh();

 protected:
  void showEvent(QShowEvent* event) override;
  /// Enter presses the button that has the focus.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class Today;
  QWidget* BuildLists(QWidget* column);
  QWidget* BuildFirstSteps(QWidget* column);
  void Show();
  void ShowToday();
  void ShowLowStock();
  void ShowDatabases();
  void OpenStock(QTableWidgetItem* activated);

  WindowList& windows_;
  Session& session_;
  QLabel* heading_;
  QLabel* facts_;
  QPushButton* makeBatch_;
  QPushButton* find_;
  QPushButton* openBatch_;  ///< one that was left open
  std::int32_t openNumber_ = 0;
  QWidget* firstSteps_;
  QWidget* lists_;
  QWidget* databases_;  ///< a button for each of those that were used last
  std::function<void(const QString& database)> change_;
  QLabel* todayHeading_ = nullptr;
  std::shared_ptr<Today> todays_;
  Grid* today_ = nullptr;
  QLabel* lowHeading_ = nullptr;
  QLabel* lowNone_ = nullptr;
  QTableWidget* low_ = nullptr;
  Changes::Subscription changes_;
  bool stale_ = true;
};

}  // namespace vellumark::desktop
