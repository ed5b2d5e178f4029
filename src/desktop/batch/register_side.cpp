#include "desktop/batch/register.h"

namespace vellumark::desktop {

void RegisterBatchSideWindows(WindowList&) {}

}  // namespace vellumark::desktop
