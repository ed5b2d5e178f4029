#pragma once

#include <QStatusBar>

#include "core/base/changes.h"
#include "core/session/session.h"

class QLabel;

namespace vellumark::desktop {

/// The latest automatic backup of the open Data File, and whether it is known to give back what it holds; where it does
/// not, the last one that does.
QString BackupText(const Session& session);
/// The last backup in the cloud that proved itself; empty without an account.
QString CloudBackupText(const Session& session);

/// The line below: messages that pass by themselves, and at the right what everything is done with: user, Database,
/// unit, lots, last backup.
class StatusLine : public QStatusBar {
  Q_OBJECT

 public:
  StatusLine(const Session& session, QWidget* parent);
  /// After a login, an opened file, another Database, other settings.
  void Refresh();
  /// For a moment, what was done last and how it is taken back, unless it was told already.
  void TellLastAct();

 private:
  QLabel* Part(const char* name, const QString& description);

  const Session& session_;
  QLabel* user_;
  QLabel* database_;
  QLabel* unit_;
  QLabel* lots_;
  QLabel* backup_;
  std::int64_t told_ = 0;
  std::string ofFile_;
};

}  // namespace vellumark::desktop
