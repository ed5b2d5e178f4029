#include "desktop/inventory/batch_in_edit.h"

#include <QApplication>

#include "desktop/kit/text.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

void Yield(FormHost& host) {
  QWidget* focus = QApplication::focusWidget();
  if (focus == nullptr || !host.Self().isAncestorOf(focus) || !host.windows.IsInEdit("BatchForm")) return;
  host.session.prompt.Tell(
      U8(QObject::tr("Batch Window - Formula in State of Edit.")),
      U8(QObject::tr("The Batch Window is open and has a recipe on screen.\n"
                     "Any attempt to change data on this window can impact the Batch Window.\n"
                     "Save && Clear the information on the Batch Window before using this Window.")),
      vellumark::Icon::Exclamation);
  host.windows.OpenForm("BatchForm");
}

}  // namespace

void YieldToBatchInEdit(FormHost& host) {
  QWidget* self = &host.Self();
  QObject::connect(qApp, &QApplication::focusChanged, self, [&host, self](QWidget* from, QWidget* to) {
    const auto mine = [self](QWidget* widget) { return widget != nullptr && self->isAncestorOf(widget); };
    if (mine(to) && !mine(from)) {
      QMetaObject::invokeMethod(
          self, [&host] { Yield(host); }, Qt::QueuedConnection);
    }
  });
}

}  // namespace vellumark::desktop
