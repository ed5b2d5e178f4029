#include "desktop/shell/status_line.h"

#include <QDateTime>
#include <QLabel>
#include <QLocale>
#include <algorithm>

#include "core/backup/backup_set.h"
#include "core/backup/failed_backup.h"
#include "core/base/units.h"
#include "core/cloud/cloud_settings.h"
#include "core/shell/undo.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kMessageStays = 10000;  // milliseconds
constexpr int kBackupWidth = 480;

}  // namespace

namespace {

QString TimeOf(const DateTime& made) {
  const QDateTime time(QDate(made.year, made.month, made.day), QTime(made.hour, made.minute, made.second));
  return QLocale().toString(time, QLocale::ShortFormat);
}

// ", 3 days ago"; nothing of today.
QString AgeOf(const Session& session, const DateTime& made) {
  const std::int64_t days = session.clock.Today().DayNumber() - made.DayNumber();
  if (days <= 0) return {};
  return days == 1 ? StatusLine::tr(", yesterday") : StatusLine::tr(", %1 days ago").arg(days);
}

// What is wrong with it too: the first fault, and how many there are besides.
QString SetText(const Session& session, const BackupSet& set) {
  const QString when = TimeOf(set.made) + AgeOf(session, set.made);
  if (!set.proof) return StatusLine::tr("Automatic backup of %1, not proven").arg(when);
  const std::vector<std::string>& faults = set.proof->content.faults;
  if (faults.empty()) return StatusLine::tr("Automatic backup of %1, proven").arg(when);
  const QString first = faults.size() == 1 ? Q(faults.front())
                                           : StatusLine::tr("%1 and %2 more").arg(Q(faults.front())).arg(faults.size() - 1);
  return StatusLine::tr("Automatic backup of %1: the Data File has faults (%2)").arg(when, first);
}

}  // namespace

QString BackupText(const Session& session) {
  const std::filesystem::path file = session.DataFileName;
  std::vector<BackupSet> sets;
  try {
    sets = ListSets(file.parent_path() / kAutoBackupFolder);
  } catch (const Failure& failure) {
    return StatusLine::tr("The automatic backups cannot be read: %1").arg(Q(failure.cause));
  }
  std::erase_if(sets, [&](const BackupSet& set) { return set.dataFile.filename() != file.filename(); });
  const auto failed = LastFailedBackup(session, file);
  const bool failedLast = failed && (sets.empty() || sets.back().made < failed->when);
  if (sets.empty() && !failedLast) return StatusLine::tr("No automatic backup yet: one is made when the program closes");
  QString last = failedLast ? StatusLine::tr("The automatic backup of %1 failed (%2)")
                                        .arg(TimeOf(failed->when) + AgeOf(session, failed->when), Q(failed->cause))
                                  : SetText(session, sets.back());
  if (!failedLast && sets.back().Proven()) return last;
  const auto proven = std::ranges::find_if(sets.rbegin(), sets.rend(), &BackupSet::Proven);
  if (proven == sets.rend()) return StatusLine::tr("%1; none is proven").arg(last);
  return StatusLine::tr("%1; the last proven one is of %2").arg(last, TimeOf(proven->made) + AgeOf(session, proven->made));
}

QString CloudBackupText(const Session& session) {
  CloudSettings settings;
  try {
    settings = ReadCloudSettings(session);
  } catch (const Failure& failure) {
    return StatusLine::tr("The cloud settings cannot be read: %1").arg(Q(failure.cause));
  }
  if (!settings.Configured()) return {};
  if (!settings.LastBackup) return StatusLine::tr("No Cloud Backup on file.");
  const auto text = [](const QDateTime& time) { return QLocale().toString(time, QLocale::ShortFormat); };
  const QDateTime proven = QDateTime::fromString(Q(settings.LastProven).section("_Backup_", 1).left(19), "MM_dd_yyyy_HH_mm_ss");
  if (proven.isValid()) return StatusLine::tr("Last proven Cloud backup: %1").arg(text(proven));
  const DateTime& made = *settings.LastBackup;
  return StatusLine::tr("Cloud backup of %1, not proven")
      .arg(text({QDate(made.year, made.month, made.day), QTime(made.hour, made.minute, made.second)}));
}

StatusLine::StatusLine(const Session& session, QWidget* parent) : QStatusBar(parent), session_(session) {
  setObjectName("StatusLine");
  setSizeGripEnabled(false);
  user_ = Part("lblStatusUser", tr("User"));
  database_ = Part("lblStatusDatabase", tr("Database"));
  unit_ = Part("lblStatusUnit", tr("Unit of stock"));
  lots_ = Part("lblStatusLots", tr("Lotted Inventory"));
  backup_ = Part("lblStatusBackup", tr("Last automatic backup"));
  Refresh();
}

QLabel* StatusLine::Part(const char* name, const QString& description) {
  auto* part = new QLabel(this);
  part->setObjectName(name);
  part->setToolTip(description);
  part->setAccessibleName(description);
  part->setContentsMargins(space::kUnit, 0, space::kUnit, 0);
  addPermanentWidget(part);
  return part;
}

void StatusLine::Refresh() {
  const bool open = session_.RecordsetsOpen;
  user_->setText(Q(session_.CurrentUser));
  user_->setVisible(!session_.CurrentUser.empty());
  database_->setText(Q(session_.CurrentDatabase));
  unit_->setText(Q(UnitName(session_.UMI)));
  lots_->setText(session_.InvLotTracking != 0 ? tr("Lots") : tr("No lots"));
  const QString backup = !open                  ? QString()
                         : session_.ArchiveView ? tr("Archive or backup copy, to be looked at only")
                                                : BackupText(session_);
  // What failed may take more words than there is room for.
  backup_->setText(backup_->fontMetrics().elidedText(backup, Qt::ElideRight, kBackupWidth));
  backup_->setToolTip(backup_->text() == backup ? tr("Last automatic backup") : backup);
  for (QLabel* part : {database_, unit_, lots_, backup_}) part->setVisible(open);
}

void StatusLine::TellLastAct() {
  if (!session_.RecordsetsOpen) return;
  const std::vector<UndoEntry> acts = ListUndo(session_);
  const std::int64_t last = acts.empty() ? 0 : acts.front().id;
  const bool isNew = session_.DataFileName == ofFile_ && last > told_;
  ofFile_ = session_.DataFileName;
  told_ = std::max(last, isNew ? told_ : last);
  if (isNew) showMessage(tr("%1.   Ctrl+Shift+Z takes it back").arg(Q(acts.front().what)), kMessageStays);
}

}  // namespace vellumark::desktop
