#pragma once

#include "desktop/kit/window.h"

class QCalendarWidget;

namespace vellumark::desktop {

/// A day chosen from a calendar, 2000 or later: opened with {"Date", "YYYY-MM-DD"}, or at today; gives back "Date".
class CalendarForm : public Dialog {
  Q_OBJECT

 public:
  CalendarForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdOK_Click();
  void cmdToday_Click();

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void Dress();
  void ShowDay(const DateTime& day);

  QCalendarWidget* calendar_ = nullptr;
};

}  // namespace vellumark::desktop
