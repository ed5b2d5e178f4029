#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "core/cloud/shared_accounts.h"
#include "core/colors/guide_database.h"
#include "core/exchange/formula_import.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class CheckedList;

/// Formulas in: from a file of any format, another Data File, another Database or the color guides. First where from and
/// where to, then what is new and what differs, with a box for each formula, then what was done.
class DBImport_Formulas : public Window {
  Q_OBJECT

 public:
  DBImport_Formulas(WindowList& windowList, FileChooser choose);
  ~DBImport_Formulas() override;
  void OnChanges(const std::vector<Change>& changes) override;
  void UpdateEnabled() override;
  bool InEdit() const override { return false; }

 public Q_SLOTS:
  void cmdBrowse_Click();
  /// The shares of other accounts, fetched now.
  void cmdCloudGet_Click();
  void cmdColumns_Click();
  void cmdCompare_Click();
  void cmdView_Click();
  void cmdImport_Click();
  void cmdSaveReport_Click();
  void cmdUndo_Click();

 private:
  enum class Source { File, Database, Guides, Cloud };
  class Planned;

  void BuildSource(Form form);
  void BuildDestination(Form form);
  void BuildComparison(Form form);
  void BuildReport(Form form);
  Source ChosenSource() const;
  bool IsDataFile() const;
  void ListAccounts();
  void TakeAccount(int place);
  std::vector<std::string> ChosenGuides() const;
  /// The Databases of the source that may be chosen from.
  void ListSources();
  Result<FormulaTable> Read();
  Result<MergeTarget> Target();
  void Compare();
  /// Nothing is compared: what was shown does not hold any more.
  void Forget(const QString& why);
  void ShowPlan();
  void ShowWhatElse();
  void TakeChecked();
  void ChooseMods(bool isNew, bool different);
  void TellDone(const MergeReport& report);

  FileChooser choose_;
  std::filesystem::path file_;
  std::vector<std::string> databasesOfFile_;
  std::vector<const Guide*> guides_;
  std::shared_ptr<MergePlan> plan_;
  std::optional<MergeReport> report_;
  std::string reportText_;
  bool working_ = false;

  QTabWidget* steps_ = nullptr;
  RadioField* source_ = nullptr;
  QLabel* fileName_ = nullptr;
  CommandButton* browse_ = nullptr;
  CommandButton* columns_ = nullptr;
  ComboField* account_ = nullptr;
  CommandButton* cloudGet_ = nullptr;
  std::vector<ShareRow> shares_;
  std::filesystem::path shareFile_;
  std::vector<std::string> databasesOfShare_;
  ComboField* sourceDatabase_ = nullptr;
  CheckListField* guideList_ = nullptr;
  ComboField* unit_ = nullptr;
  RadioField* destination_ = nullptr;
  TextField* newName_ = nullptr;
  ComboField* target_ = nullptr;
  CheckField* multiplyOut_ = nullptr;
  CheckField* unused_ = nullptr;
  CheckField* stock_ = nullptr;
  std::shared_ptr<Planned> rows_;
  CheckedList* list_ = nullptr;
  QLabel* counts_ = nullptr;
  CheckField* skipBad_ = nullptr;
  NoteField* whatElse_ = nullptr;
  NoteField* done_ = nullptr;
  CommandButton* view_ = nullptr;
  CommandButton* import_ = nullptr;
  CommandButton* saveReport_ = nullptr;
  CommandButton* undo_ = nullptr;
  std::vector<CommandButton*> choices_;
};

}  // namespace vellumark::desktop
