#include "desktop/colors/name_entry.h"

#include <QApplication>

namespace vellumark::desktop {

void FollowNameEntry(FormHost& window, std::string_view nameField, const Result<NameEntry>& entry,
                     const NameSteps& steps) {
  if (!window.Accepted(entry)) {
    steps.clear();
    window.FocusField(nameField);
    return;
  }
  switch (entry->kind) {
    case NameEntry::Kind::Empty:
      QApplication::beep();
      window.FocusField(nameField);
      break;
    case NameEntry::Kind::Found:
      steps.show(entry->name);
      break;
    case NameEntry::Kind::New:
      steps.begin(entry->name);
      break;
    case NameEntry::Kind::Abandoned:
      steps.clear();
      window.FocusField(nameField);
      break;
  }
}

}  // namespace vellumark::desktop
