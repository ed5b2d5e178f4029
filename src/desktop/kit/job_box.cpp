#include "desktop/kit/job_box.h"

#include <QFocusEvent>

#include "core/jobs/job_numbers.h"

namespace vellumark::desktop {

JobBox::JobBox(const QString& name, const Session& session)
    : NameBox(
          name, session,
          {[&session](std::string_view typed) { return CompleteJobNumber(session, typed); },
           [&session](std::string_view typed, std::size_t limit) { return JobNumbersFrom(session, typed, limit); }}) {
  SetRule(TextRule::Any(kJobNumberLength));
}

std::string JobBox::Number() const {
  return ReadJobNumber(Text());
}

void JobBox::focusInEvent(QFocusEvent* event) {
  TextField::focusInEvent(event);
}

void JobBox::focusOutEvent(QFocusEvent* event) {
  const bool stays = event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
  if (const std::string number = Number(); !stays && number != Text()) SetText(number);
  TextField::focusOutEvent(event);
}

}  // namespace vellumark::desktop
