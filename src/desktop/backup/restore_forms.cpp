#include "desktop/backup/restore_forms.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <algorithm>

#include "core/cloud/cloud_sets.h"
#include "core/session/settings.h"
#include "core/shell/backups.h"
#include "core/shell/settings_restore.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"
#include "desktop/kit/wait_progress.h"

namespace vellumark::desktop {
namespace {

QString FolderOr(const QString& folder, const QString& otherwise) {
  return QFileInfo(folder).isDir() ? folder : otherwise;
}

QString AutoBackupFolder(const Session& session) {
  return Q((std::filesystem::path(session.DataFileName).parent_path() / kAutoBackupFolder).string());
}

QString TimeText(const DateTime& made) {
  return QLocale().toString(QDateTime(QDate(made.year, made.month, made.day), QTime(made.hour, made.minute, made.second)),
                            QLocale::ShortFormat);
}

QString ProofWords(const BackupSet& set) {
  if (!set.proof) return RestoreAutomaticForm::tr("not proven");
  return set.proof->content.Sound() ? RestoreAutomaticForm::tr("proven") : RestoreAutomaticForm::tr("has faults");
}

// Settings of the cloud that cannot be read hide no other day.
bool HasCloud(const Session& session) {
  try {
    return RequireCloud(session).has_value();
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

RestoreForm::RestoreForm(WindowList& windowList, QWidget* owner, const std::string& name, StartupWindows& startup)
    : Dialog(windowList, owner, name.c_str(), tr("Restore")), startup_(startup) {}

void RestoreForm::Warn(Form& form) {
  Paragraph(form, tr("This action will restore data to the current file."));
  Paragraph(form, tr("Only use this function to fix a damaged or lost data file."));
  Paragraph(form, tr("WARNING: All information in the current file will be lost!"), "lblWarning");
  QuietParagraph(form, tr("A copy of the current file and its photos is kept in a folder beside it."));
}

void RestoreForm::Restore(const std::filesystem::path& source, RestoreFrom from) {
  bool restored = false;
  const WaitProgress::OfKind kind(windows.Wait(), WaitKind::Wait_RestoreData);
  WithFiles(*this, tr("Restore"), [&] {
    restored = FormHost::Accepted(RestoreDataFile(session, source, from, startup_));
  });
  if (restored) accept();
}

RestoreFileLocationForm::RestoreFileLocationForm(WindowList& windowList, QWidget* owner, StartupWindows& startup,
                                                 FileChooser choose)
    : RestoreForm(windowList, owner, "RestoreFileLocationForm", startup), choose_(std::move(choose)) {
  Form form(*this);
  Warn(form);
  form.Buttons({form.Button("cmdContinue", tr("C&ontinue")), form.Button("cmdCancel", tr("Cancel"))});
  setMinimumWidth(480);
  FitHeight(*this);
}

void RestoreFileLocationForm::cmdContinue_Click() {
  FileChoice choice = ChoiceToOpen(session);
  choice.title = tr("Select Backup file to restore from");
  choice.folder = FolderOr(Q(GetSetting(session, setting::BackupRestoreFileLocation)), QDir::rootPath());
  const QString file = choose_(choice, this);
  if (!file.isEmpty()) Restore(U8(file), RestoreFrom::Location);
}

RestoreAutomaticForm::RestoreAutomaticForm(WindowList& windowList, QWidget* owner, StartupWindows& startup)
    : RestoreForm(windowList, owner, "RestoreAutomaticForm", startup) {
  Form form(*this);
  Warn(form);
  list_ = new QTreeWidget;
  list_->setObjectName("lstSets");
  list_->setAccessibleName(tr("Backups"));
  list_->setHeaderLabels({tr("Made"), tr("Data File"), tr("Formulas"), tr("Batches"), tr("Proof"), tr("Kept in")});
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setTabKeyNavigation(false);
  form.Wide(list_, 1);
  notes_ = QuietParagraph(form, {}, "lblNotes");
  CommandButton* cloud = form.Button("cmdCloud", tr("&Get from Cloud"));
  form.Buttons({continue_ = form.Button("cmdContinue", tr("C&ontinue")), verify_ = form.Button("cmdVerify", tr("&Verify")),
                look_ = form.Button("cmdLook", tr("&Look into...")), cloud, form.Button("cmdCancel", tr("Cancel"))});
  connect(list_, &QTreeWidget::currentItemChanged, this, [this] { Changed(); });
  cloud->setVisible(windows.Knows("CloudRestoreFileList") && HasCloud(session));
  ListDays();
  list_->setFocus();
  resize(800, 520);
}

void RestoreAutomaticForm::ListDays() {
  CloudSets cloud(session);
  SetSource* const others[]{&cloud};
  const bool withCloud = HasCloud(session);
  BackupDays known = DaysToGoBackTo(session, withCloud ? std::span<SetSource* const>(others) : std::span<SetSource* const>());
  QStringList notes;
  for (const std::string& unreadable : known.unreadable) notes += Q(unreadable);
  if (const auto asked = withCloud ? cloud.Asked() : std::nullopt)
    notes += tr("What the Cloud account has is told as of %1.").arg(TimeText(*asked));
  else if (withCloud)
    notes += tr("The Cloud account has not been asked yet which backups it has.");
  notes_->setText(notes.join("\n"));
  notes_->setVisible(!notes.isEmpty());

  list_->clear();
  days_ = std::move(known.days);
  for (const BackupDay& day : days_) {
    const BackupSet& set = day.set;
    const ContentProof held = set.proof ? set.proof->content : ContentProof{};
    const auto count = [&](std::int64_t n) { return set.proof ? locale().toString(static_cast<qlonglong>(n)) : QString(); };
    auto* item = new QTreeWidgetItem(list_, {TimeText(set.made), Q(set.dataFile.filename().string()), count(held.Formulas()),
                                             count(held.Batches()), ProofWords(set), Q(day.place)});
    for (const int figure : {2, 3}) item->setTextAlignment(figure, Qt::AlignRight | Qt::AlignVCenter);
    for (const int place : {0, 1, 5}) item->setToolTip(place, Q(set.folder.string()));
  }
  for (int column = 0; column < list_->columnCount(); ++column) list_->resizeColumnToContents(column);
  if (!days_.empty()) list_->setCurrentItem(list_->topLevelItem(0));
  Changed();
}

const BackupDay* RestoreAutomaticForm::Chosen() const {
  QTreeWidgetItem* item = list_->currentItem();
  return item == nullptr ? nullptr : &days_[static_cast<std::size_t>(list_->indexOfTopLevelItem(item))];
}

void RestoreAutomaticForm::UpdateEnabled() {
  // What is in the Cloud comes down before it can be read.
  const BackupDay* day = Chosen();
  continue_->setEnabled(day != nullptr);
  verify_->setEnabled(day != nullptr && !day->elsewhere);
  look_->setEnabled(day != nullptr && !day->elsewhere && session.RecordsetsOpen);
}

void RestoreAutomaticForm::cmdContinue_Click() {
  const BackupDay* day = Chosen();
  if (day == nullptr) return;
  if (!day->elsewhere) return Restore(day->set.dataFile, RestoreFrom::Automatic);
  if (windows.RunDialog("CloudRestoreFileList", {{"Name", day->set.folder.string()}})) accept();
}

void RestoreAutomaticForm::cmdVerify_Click() {
  const BackupDay* day = Chosen();
  if (day == nullptr) return;
  const BackupSet* set = &day->set;
  const SetCheck check = VerifySet(session, *set);
  std::string text = U8(check.faults.empty() ? tr("The backup of %1 is sound.").arg(TimeText(set->made))
                                             : tr("The backup of %1 is not sound:").arg(TimeText(set->made)) + "\n");
  constexpr std::size_t kMost = 10;
  for (std::size_t i = 0; i < check.faults.size() && i < kMost; ++i) text += "\n" + check.faults[i];
  session.prompt.Tell(U8(tr("Backup")), text,
                      check.faults.empty() ? vellumark::Icon::Information : vellumark::Icon::Exclamation);
}

void RestoreAutomaticForm::cmdLook_Click() {
  if (const BackupDay* day = Chosen())
    windows.RunDialog("LookIntoSetForm", {{"Set", day->set.dataFile.string()}, {"Made", U8(TimeText(day->set.made))}});
}

void RestoreAutomaticForm::cmdCloud_Click() {
  if (windows.RunDialog("CloudRetrieveBackupListSplashForm")) ListDays();
}

RestoreSupportFilesChoice::RestoreSupportFilesChoice(WindowList& windowList, QWidget* owner, const std::string& name,
                                                     bool automatic, FileChooser choose)
    : Dialog(windowList, owner, name.c_str(), tr("Select a Support File")), automatic_(automatic), choose_(std::move(choose)) {}

int RestoreSupportFilesChoice::exec() {
  const QString stored = Q(GetSetting(session, setting::BackupRestoreFileLocation));
  const QString folder = automatic_ ? FolderOr(AutoBackupFolder(session), QDir::rootPath()) : FolderOr(stored, QDir::rootPath());
  const QString file =
      choose_({tr("Select a Support File"), tr("Support Files (*.dat) | *.dat"), ".dat", folder}, parentWidget());
  if (file.isEmpty()) return Rejected;
  bool restored = false;
  WithFiles(*this, tr("Select a Support File"), [&] {
    restored = FormHost::Accepted(RestoreSupportFiles(session, std::filesystem::path(U8(file)).parent_path()));
  });
  return restored ? QDialog::Accepted : QDialog::Rejected;
}

}  // namespace vellumark::desktop
