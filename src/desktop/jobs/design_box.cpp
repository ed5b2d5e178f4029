#include "desktop/jobs/design_box.h"

#include "core/jobs/designs.h"

namespace vellumark::desktop {

DesignBox::DesignBox(const QString& name, const Session& session)
    : NameBox(name, session, SortedNames({})), session_(session) {
  SetRule(TextRule::Upper(kDesignIDLength));
  ListIDs();
}

void DesignBox::ListIDs() {
  SetSource(SortedNames(DesignIDs(session_)));
}

// The box of names follows the configured length of names, and what it leaves is the name of a colour.
void DesignBox::focusInEvent(QFocusEvent* event) {
  TextField::focusInEvent(event);
}

void DesignBox::focusOutEvent(QFocusEvent* event) {
  TextField::focusOutEvent(event);
}

}  // namespace vellumark::desktop
