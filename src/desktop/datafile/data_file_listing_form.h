#pragma once

#include <filesystem>
#include <functional>

#include "core/shell/data_file_search.h"
#include "core/shell/startup.h"
#include "desktop/kit/window.h"

class QTreeWidget;

namespace vellumark::desktop {

/// Search for Data Files: looks through the drive of the current file and opens the one picked from what was found.
class VKD_File_ListingForm : public Dialog {
  Q_OBJECT

 public:
  using SearchRoot = std::function<std::filesystem::path(const std::filesystem::path&)>;
  VKD_File_ListingForm(WindowList& windowList, QWidget* owner, StartupWindows& startup, SearchRoot searchRoot);
  void OnOpen(const Arguments& arguments) override;
  /// The search comes first; without a file there is nothing to show.
  int exec() override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOpen_Click();

 private:
  void Fill(const FoundDataFiles& found);

  StartupWindows& startup_;
  SearchRoot searchRoot_;
  bool pick_ = false;
  QLabel* summary_;
  QTreeWidget* files_;
  CommandButton* open_;
};

}  // namespace vellumark::desktop
