#pragma once

#include <QStatusBar>

#include "core/base/changes.h"
#include "core/session/session.h"

class QLabel;

namespace vellumark::desktop {

/// The latest automatic backup of the open Data File, and whether it is known to give back what it holds.
QString BackupText(const Session& session);

/// The line below: messages that pass by themselves, and at the right what everything is done with: user, Database,
/// unit, lots, last backup.
class StatusLine : public QStatusBar {
  Q_OBJECT

 public:
  StatusLine(const Session& session, QWidget* parent);
  /// After a login, an opened file, another Database, other settings.
  void Refresh();

 private:
  QLabel* Part(const char* name, const QString& description);

  const Session& session_;
  QLabel* user_;
  QLabel* database_;
  QLabel* unit_;
  QLabel* lots_;
  QLabel* backup_;
};

}  // namespace vellumark::desktop
