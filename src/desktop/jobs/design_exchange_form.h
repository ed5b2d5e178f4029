#pragma once

#include "core/cloud/shared_accounts.h"
#include "core/exchange/design_file.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Designs out to a file and in from one.
class DB_ImportExport_Designs : public Window {
  Q_OBJECT

 public:
  DB_ImportExport_Designs(WindowList& windowList, FileChooser choose);
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdExport_Click();
  void cmdSelectFile_Click();
  /// The shares of other accounts, fetched now.
  void cmdCloudGet_Click();
  void cmdView_Click();
  void cmdImport_Click();

 private:
  void BuildExport(Form form);
  void BuildImport(Form form);
  void ListDesignsHere();
  void ListDesignsOfFile();
  std::vector<std::string> Selected(const Grid& grid, const TableSource& rows) const;
  void ReadFile();
  void ListAccounts();
  void TakeAccount(int place);

  FileChooser choose_;
  std::shared_ptr<TableSource> here_;
  Grid* designs_ = nullptr;
  QLabel* selected_ = nullptr;
  std::filesystem::path file_;
  std::vector<IncomingDesign> incoming_;
  std::shared_ptr<TableSource> inFile_;
  Grid* compare_ = nullptr;
  QLabel* fileName_ = nullptr;
  ComboField* account_ = nullptr;
  std::vector<ShareRow> shares_;
  bool fromCloud_ = false;
  CommandButton* view_ = nullptr;
  CommandButton* import_ = nullptr;
};

}  // namespace vellumark::desktop
