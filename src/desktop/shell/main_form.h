#pragma once

#include <QMainWindow>
#include <functional>
#include <map>
#include <string>

#include "core/shell/gating.h"
#include "desktop/kit/window_list.h"

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QStackedWidget;
class QToolBar;
class QToolButton;

namespace vellumark {
struct QuickHit;
}

namespace vellumark::desktop {

class MainArea;
class StartPage;
class StatusLine;

/// The frame of all other windows: menus, toolbar, the list of Databases, and between them the child windows or, when
/// none is open, the start page.
class MainForm : public QMainWindow, private OpenWindows {
  Q_OBJECT

 public:
  explicit MainForm(WindowList& windowList);
  ~MainForm() override;

  /// What is done before the window closes (the end of the session); false keeps it open.
  void OnClosing(std::function<bool()> closing) { closing_ = std::move(closing); }
  /// The command to make new Support Files, which needs the order of the start.
  void OnCreateSupportFiles(std::function<void()> create) { createSupportFiles_ = std::move(create); }

  /// The commands of the scale's menu, by the names of their entries.
  void OnScale(std::function<void(const std::string& item)> scale) { scale_ = std::move(scale); }

  /// After a login, an opened file, another Database: captions, lists and everything that rights decide.
  void EnableMenuItems();
  /// While a file is being closed: toolbar, users and the file commands are off until EnableMenuItems.
  void DisableMenuItems();
  void SetCaption(const std::string& caption);
  /// The cloud account in use; without one there is no line.
  void ShowCloudLine();
  MainArea& Area() const { return *area_; }

  // What is remembered of it (main_form_memory.cpp).
  /// Size, place, and whether it fills the screen. False: nothing is known yet.
  bool RecallPlace();
  /// The windows that this user had open on this Data File, but those that he may not open now.
  void ReopenWindows();
  /// Both of that, and how child windows stand.
  void Remember();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void BuildMenus();
  void BuildToolbar();
  void BuildViewMenu();
  void GateMenus();
  void FillLoginAs();
  void RunMenuItem(const std::string& name);
  /// Closes the child windows but those named, and runs the dialog in front of the main window.
  void RunDialogOf(const std::string& dialog, const std::vector<std::string>& staying = {},
                   const Arguments& arguments = {});
  void PressToolbarButton(const std::string& key);
  void PressUsers();
  void ChooseDatabase(const QString& name);
  void ShowDatabases();
  void ShowPage();
  void ShowTitle();
  void CloseToolbarMenus();
  // The commands that all windows share (main_form_commands.cpp)
  void BuildCommonCommands();
  void GateCommonCommands();
  void DoCommon(const std::string& item);
  // Files that were open, that are dropped (main_form_files.cpp)
  void NoteFile();
  void FillRecent();
  void OpenFile(const QString& path);
  // Ctrl+K (main_form_find.cpp)
  void FindAnything();
  void OpenHit(const QuickHit& hit);
  bool CanBeChosen(const std::string& menuItem) const;
  QString WayTo(const std::string& menuItem) const;

  bool IsFormOpen(std::string_view name) const override { return windows_.IsFormOpen(name); }
  bool IsInEdit(std::string_view name) const override { return windows_.IsInEdit(name); }

  WindowList& windows_;
  Session& session_;
  std::map<std::string, QAction*, std::less<>> actions_;
  std::map<std::string, QMenu*, std::less<>> menus_;
  std::map<std::string, QToolButton*, std::less<>> buttons_;
  QStackedWidget* pages_;
  StartPage* startPage_;
  MainArea* area_;
  QMenu* recent_ = nullptr;
  QToolBar* toolbar_ = nullptr;
  StatusLine* status_ = nullptr;
  QComboBox* databases_ = nullptr;
  QLabel* fullName_ = nullptr;
  QLabel* cloudName_ = nullptr;
  std::string caption_;
  Changes::Subscription changes_;
  std::function<bool()> closing_;
  std::function<void()> createSupportFiles_;
  std::function<void(const std::string&)> scale_;
};

}  // namespace vellumark::desktop
