#include "desktop/reports/register.h"

namespace vellumark::desktop {

void RegisterReportsWindows(WindowList& windows, const PrintDevices& devices) {
  windows.RegisterDialog("PrintBoxForm", [devices](WindowList& list, QWidget* owner) -> Dialog* {
    return new PrintBoxForm(list, owner, devices);
  });
}

}  // namespace vellumark::desktop
