#include "desktop/scale/register.h"

#include <QDir>
#include <QStandardPaths>

#include "desktop/kit/text.h"
#include "desktop/scale/bench_scale.h"
#include "desktop/scale/scale_settings.h"
#include "desktop/scale/wait_form_scale_boot.h"

namespace vellumark::desktop {

std::filesystem::path DesktopFolder() {
  const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
  return U8(QDir(desktop).exists() ? desktop : QDir::homePath());
}

void RegisterScaleWindows(WindowList& windows, BenchScale& scale, const std::filesystem::path& logFolder) {
  windows.RegisterDialog("ScaleSettings", [&scale, logFolder](WindowList& list, QWidget* owner) -> Dialog* {
    return new ScaleSettings(list, owner, scale, logFolder);
  });
  windows.RegisterDialog("WaitForm_ScaleBoot", [&scale](WindowList& list, QWidget* owner) -> Dialog* {
    return new WaitForm_ScaleBoot(list, owner, scale);
  });
}

}  // namespace vellumark::desktop
