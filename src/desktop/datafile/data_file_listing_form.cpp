#include "desktop/datafile/data_file_listing_form.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QTreeWidget>

#include "core/shell/data_files.h"
#include "desktop/datafile/file_windows.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

VKD_File_ListingForm::VKD_File_ListingForm(WindowList& windowList, QWidget* owner, StartupWindows& startup,
                                           SearchRoot searchRoot)
    : Dialog(windowList, owner, "VKD_File_ListingForm", tr("Search for Data Files")),
      startup_(startup),
      searchRoot_(std::move(searchRoot)) {
  Form form(*this);
  summary_ = Paragraph(form, {}, "lblSummary");
  files_ = new QTreeWidget;
  files_->setObjectName("lstFiles");
  files_->setAccessibleName(tr("Data files"));
  files_->setHeaderLabels({tr("Data File"), tr("Changed"), tr("Folder")});
  files_->setRootIsDecorated(false);
  files_->setUniformRowHeights(true);
  files_->setAllColumnsShowFocus(true);
  files_->setTextElideMode(Qt::ElideMiddle);
  files_->setTabKeyNavigation(false);
  form.Wide(files_, 1);
  form.Buttons({open_ = form.Button("cmdOpen", tr("&Open")), form.Button("cmdCancel", tr("Cancel"))});
  connect(files_, &QTreeWidget::itemActivated, this, [this] { cmdOpen_Click(); });
  connect(files_, &QTreeWidget::currentItemChanged, this, [this] { Changed(); });
  resize(800, 480);
}

void VKD_File_ListingForm::OnOpen(const Arguments& arguments) {
  pick_ = arguments.Has("Pick");
}

int VKD_File_ListingForm::exec() {
  const std::filesystem::path current =
      session.DataFileName.empty() ? session.ProgramFolder : std::filesystem::path(session.DataFileName);
  const std::filesystem::path root = searchRoot_(current);
  FoundDataFiles found;
  {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Searching for Data Files ..."));
    found = SearchDataFiles(root, session.progress);
  }
  if (found.files.empty()) {
    if (!found.cancelled)
      session.prompt.Tell("No Files Found", "Vellumark was unable to find a Data File", vellumark::Icon::Information);
    return Rejected;
  }
  Fill(found);
  return Dialog::exec();
}

void VKD_File_ListingForm::Fill(const FoundDataFiles& found) {
  const auto count = [](std::size_t n) { return QString::number(n); };
  QString text =
      found.files.size() == 1 ? tr("1 data file found.") : tr("%1 data files found.").arg(count(found.files.size()));
  if (found.cancelled) text += " " + tr("The search was stopped before its end.");
  if (found.unreadable > 0) text += " " + tr("Folders that could not be looked into: %1.").arg(count(found.unreadable));
  summary_->setText(text);
  for (const std::filesystem::path& path : found.files) {
    const QString whole = Q(path.string());
    auto* item = new QTreeWidgetItem(
        files_, {Q(path.filename().string()), QLocale().toString(QFileInfo(whole).lastModified(), QLocale::ShortFormat),
                 Q(path.parent_path().string())});
    item->setData(0, Qt::UserRole, whole);
    item->setToolTip(0, whole);
    item->setToolTip(2, whole);
  }
  files_->resizeColumnToContents(0);
  files_->resizeColumnToContents(1);
  files_->setColumnWidth(0, std::clamp(files_->columnWidth(0), 160, 360));
  files_->setCurrentItem(files_->topLevelItem(0));
  files_->setFocus();
}

void VKD_File_ListingForm::UpdateEnabled() {
  open_->setEnabled(files_->currentItem() != nullptr);
}

void VKD_File_ListingForm::cmdOpen_Click() {
  const QTreeWidgetItem* item = files_->currentItem();
  if (item == nullptr) return;
  const QString path = item->data(0, Qt::UserRole).toString();
  if (pick_) {
    result.Set("Path", U8(path));
    accept();
    return;
  }
  bool opened = false;
  WithFiles(*this, tr("Open Data File"), [&] {
    const auto answer = OpenOtherDataFile(session, U8(path), startup_);
    opened = FormHost::Accepted(answer) && *answer;
  });
  if (opened) accept();
}

}  // namespace vellumark::desktop
