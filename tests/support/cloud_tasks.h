#pragma once

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include "support/desktop.h"

namespace vellumark::test {

inline bool IsOver(QWidget& task) {
  return Control<QPushButton>(task, "cmdClose").isVisible();
}
inline std::string Info(QWidget& task) {
  return desktop::U8(Control<QLabel>(task, "lblUpdateInfo").text());
}
inline bool Logs(QWidget& task, const char* text) {
  return !Control<QListWidget>(task, "lstLog").findItems(text, Qt::MatchContains).isEmpty();
}

/// Does `act` and, once the dialog of that name is there and does nothing any more, `inside`, which makes it close. Others
/// may come before. Work lets events be handled, so waiting for its end within them would be waiting for oneself.
inline void WithDialog(const char* name, const std::function<void()>& act, const std::function<void(QWidget&)>& inside) {
  QPointer<QDialog> dialog;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog == nullptr || dialog->objectName() != name) return;
    const auto* start = dialog->findChild<QPushButton*>("cmdStart");
    if (start != nullptr && !start->isVisible() && !IsOver(*dialog)) return;
    poll.stop();
    Settle();
    inside(*dialog);
    Settle();
    if (dialog == nullptr || !dialog->isVisible()) return;
    ADD_FAILURE() << name << " did not close";
    dialog->done(0);
  });
  poll.start(5);
  act();
  EXPECT_FALSE(poll.isActive()) << name << " did not come up";
}
/// The same with the window of a task.
inline void WithTask(const std::function<void()>& act, const std::function<void(QWidget&)>& inside) {
  WithDialog("Cloud_GetPutData_Form", act, inside);
}
/// The end of a task, which is `ending`; closes its window.
inline void EndsWith(QWidget& task, const char* ending) {
  ASSERT_TRUE(IsOver(task));
  EXPECT_NE(Info(task).find(ending), std::string::npos) << Info(task);
  Click(task, "cmdClose");
}

}  // namespace vellumark::test
