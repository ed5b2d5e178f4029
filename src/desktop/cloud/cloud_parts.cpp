#include "desktop/cloud/cloud_parts.h"

#include <QFileInfo>
#include <QStandardPaths>

#include "desktop/kit/text.h"
#include "devices/ftp_connection.h"

namespace vellumark::desktop {

std::unique_ptr<FtpClient> OwnLine(const Clock& clock) {
  return devices::FtpConnection(clock);
}

LogPlace OwnLogPlace() {
  const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
  if (QFileInfo(desktop).isDir()) return {U8(desktop), "the Desktop"};
  return {U8(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)), "Documents"};
}

}  // namespace vellumark::desktop
