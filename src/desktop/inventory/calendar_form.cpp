#include "desktop/inventory/calendar_form.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLayout>
#include <QTextCharFormat>
#include <QToolButton>

#include "core/inventory/adjust.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

CalendarForm::CalendarForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "CalendarForm", tr("Date")) {
  Form form(*this);
  calendar_ = new QCalendarWidget;
  if (auto* days = calendar_->findChild<QAbstractItemView*>()) days->setAccessibleName(tr("Days of the month"));
  calendar_->setObjectName("Cal");
  calendar_->setAccessibleName(tr("Date"));
  calendar_->setMinimumDate(QDate(2000, 1, 1));
  calendar_->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  calendar_->setGridVisible(false);
  calendar_->setDateEditEnabled(true);
  calendar_->setMinimumSize(344, 272);
  Dress();
  form.Wide(calendar_);
  form.Buttons(
      {form.Button("cmdOK", tr("OK")), form.Button("cmdToday", tr("&Today")), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  ShowDay(session.clock.Today());
  connect(calendar_, &QCalendarWidget::activated, this, &CalendarForm::cmdOK_Click);
  for (auto* view : calendar_->findChildren<QAbstractItemView*>()) {
    view->setObjectName("Cal_View");
    view->installEventFilter(this);
    view->setFocus();
  }
}

// The colours of the program, which the widget does not take from the style by itself.
void CalendarForm::Dress() {
  const Colors& colors = Look::Now();
  calendar_->setStyleSheet(
      QString("#qt_calendar_navigationbar { background: %1; } QToolButton { color: %2; background: "
              "transparent; border: none; padding: 4px 12px; font-weight: 600; } QToolButton:hover "
              "{ background: %3; } QToolButton::menu-indicator { image: none; }")
          .arg(colors.raised.name(), colors.text.name(), colors.chosen.name()));
  QTextCharFormat day;
  day.setForeground(colors.text);
  for (const Qt::DayOfWeek weekend : {Qt::Saturday, Qt::Sunday}) calendar_->setWeekdayTextFormat(weekend, day);
  for (const auto& [name, text] : {std::pair{"qt_calendar_prevmonth", "‹"}, {"qt_calendar_nextmonth", "›"}}) {
    auto* button = calendar_->findChild<QToolButton*>(name);
    button->setIcon({});
    button->setText(QString::fromUtf8(text));
  }
}

void CalendarForm::OnOpen(const Arguments& arguments) {
  if (!arguments.Has("Date")) return;
  if (const auto day = ParseDateTime(arguments.Text("Date"))) ShowDay(*day);
}

void CalendarForm::ShowDay(const DateTime& day) {
  calendar_->setSelectedDate(QDate(day.year, day.month, day.day));
}

void CalendarForm::cmdToday_Click() {
  ShowDay(session.clock.Today());
}

void CalendarForm::cmdOK_Click() {
  const auto date = ReadLotDate(U8(calendar_->selectedDate().toString(Qt::ISODate)));
  if (!Accepted(date)) return;
  result.Set("Date", date->DateText());
  accept();
}

void CalendarForm::changeEvent(QEvent* event) {
  Dialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && calendar_ != nullptr) Dress();
}

bool CalendarForm::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
      cmdOK_Click();
      return true;
    }
  }
  return Dialog::eventFilter(watched, event);
}

}  // namespace vellumark::desktop
