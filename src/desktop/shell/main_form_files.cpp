// The Data Files that the main window knows of: those that were open, and those that are dropped on it.

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <QUrl>

#include "core/session/acts.h"
#include "desktop/kit/access_letters.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/shell/main_form.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kRecent = "files/recent";
constexpr int kMostRecent = 8;

QString DroppedFile(const QMimeData& data) {
  for (const QUrl& url : data.urls())
    if (url.isLocalFile() && url.toLocalFile().endsWith(".vkd", Qt::CaseInsensitive)) return url.toLocalFile();
  return {};
}

}  // namespace

void MainForm::NoteFile() {
  if (!session_.RecordsetsOpen) return;
  QStringList files = memory::Recall(kRecent).toStringList();
  const QString file = Q(session_.DataFileName);
  if (!files.isEmpty() && files.front() == file) return;
  files.removeAll(file);
  files.prepend(file);
  memory::Keep(kRecent, QStringList(files.mid(0, kMostRecent)));
}

void MainForm::FillRecent() {
  recent_->clear();
  for (const QString& file : memory::Recall(kRecent).toStringList()) {
    if (file == Q(session_.DataFileName) || !QFileInfo::exists(file)) continue;
    QString caption = QFileInfo(file).fileName() + "   " + QFileInfo(file).path();
    QAction* action = recent_->addAction(caption.replace('&', "&&"));
    connect(action, &QAction::triggered, this, [this, file] { OpenFile(file); });
  }
  LetterActions(recent_->actions());
  recent_->menuAction()->setVisible(MayDo(session_, Act::DataFiles));
  recent_->setEnabled(!recent_->isEmpty());
}

void MainForm::OpenFile(const QString& path) {
  if (windows_.Knows("FileExplorerForm")) RunDialogOf("FileExplorerForm", {}, {{"OpenPath", U8(path)}});
}

void MainForm::dragEnterEvent(QDragEnterEvent* event) {
  if (!session_.LoadingDatabase && !DroppedFile(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainForm::dropEvent(QDropEvent* event) {
  const QString path = DroppedFile(*event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  // Whoever dropped it waits for the drop to end.
  QMetaObject::invokeMethod(
      this, [this, path] { OpenFile(path); }, Qt::QueuedConnection);
}

}  // namespace vellumark::desktop
