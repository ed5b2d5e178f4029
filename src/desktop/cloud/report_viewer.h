#pragma once

#include <vector>

#include "core/cloud/cloud_admin.h"
#include "desktop/cloud/cloud_parts.h"
#include "desktop/kit/window.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace vellumark::desktop {

/// The reports that the accounts put up, as the administrator fetched them: by account, and what a report says in a grid.
class CloudUtilityReportViewer : public Dialog {
  Q_OBJECT

 public:
  CloudUtilityReportViewer(WindowList& windowList, QWidget* owner);
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdFetch_Click();
  void cmdDeleteFiles_Click();
  void cmdExport_Click();

 private:
  void ListReports();
  void ShowReport();
  const UserReport* Chosen() const;

  std::vector<UserReport> reports_;
  QTreeWidget* list_;
  QLabel* name_;
  Grid* grid_;
  std::shared_ptr<TableSource> cells_;
  CommandButton* export_;
};

/// Where a fetched report is saved, and under which name. Opened with {"Report", UserReport}.
class CloudReportViewer_ExportLocation : public Dialog {
  Q_OBJECT

 public:
  CloudReportViewer_ExportLocation(WindowList& windowList, QWidget* owner, FileChooser choose);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdBrowse_Click();
  void cmdSave_Click();

 private:
  FileChooser choose_;
  UserReport report_;
  TextField* folder_;
  TextField* fileName_;
};

}  // namespace vellumark::desktop
