#include "desktop/kit/discard.h"

#include <QCoreApplication>

#include "desktop/kit/text.h"

namespace vellumark::desktop {

bool MayDiscard(const Session& session) {
  return session.prompt.Ask(U8(QCoreApplication::translate("Discard", "Cancel Without Saving Changes?")),
                            U8(QCoreApplication::translate("Discard", "Cancel without saving changes?")), Answer::No);
}

}  // namespace vellumark::desktop
