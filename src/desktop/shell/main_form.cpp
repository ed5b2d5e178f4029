#include "desktop/shell/main_form.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <array>

#include "core/cloud/cloud_settings.h"
#include "core/session/users.h"
#include "desktop/datafile/change_database.h"
#include "desktop/kit/access_letters.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/main_area.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/shell/commands.h"
#include "desktop/shell/start_page.h"
#include "desktop/shell/status_line.h"
#include "desktop/shell/web_links.h"

namespace vellumark::desktop {
namespace {

constexpr int kLow = 600;
constexpr int kCloudWidth = 200;
constexpr int kStatusFrom = 768;

// The small windows that the toolbar opens.
constexpr std::array<std::string_view, 5> kToolbarMenus{"ColorsMenu", "LabelMenu", "FindMenu", "DBToolsMenu",
                                                        "JobMenu"};

QString ButtonCaption(std::string_view key) {
  static const std::map<std::string_view, const char*> captions{
      {"InkEst", QT_TRANSLATE_NOOP("MainForm", "Ink Estimator")},
      {"Color", QT_TRANSLATE_NOOP("MainForm", "Colors")},
      {"Batch", QT_TRANSLATE_NOOP("MainForm", "Batch")},
      {"Job", QT_TRANSLATE_NOOP("MainForm", "Jobs")},
      {"Inventory", QT_TRANSLATE_NOOP("MainForm", "Inventory")},
      {"Label", QT_TRANSLATE_NOOP("MainForm", "Labels")},
      {"Report", QT_TRANSLATE_NOOP("MainForm", "Reports")},
      {"DBTools", QT_TRANSLATE_NOOP("MainForm", "DB Tools")},
      {"Find", QT_TRANSLATE_NOOP("MainForm", "Find")},
      {"Users", QT_TRANSLATE_NOOP("MainForm", "Users")},
  };
  return MainForm::tr(captions.at(key));
}

// Letters of the menu bar are lost to all windows: those that few of them need.
QString CaptionOf(const MenuItem& item) {
  if (item.name == "MenuDataFile") return MainForm::tr("Data &File");
  if (item.name == "MenuDatabase") return MainForm::tr("Data&base");
  if (item.name == "menuCloud") return MainForm::tr("Clo&ud");
  return Q(item.caption);
}

}  // namespace

MainForm::MainForm(WindowList& windowList) : windows_(windowList), session_(windowList.session) {
  setObjectName("MainForm");
  setWindowIcon(Icon("vellumark"));
  setMinimumSize(800, 500);
  resize(1280, 720);
  pages_ = new QStackedWidget(this);
  startPage_ = new StartPage(
      windows_, pages_, [this] { FindAnything(); }, [this](const QString& name) { ChooseDatabase(name); });
  area_ = new MainArea(this);
  pages_->addWidget(startPage_);
  pages_->addWidget(area_);
  setCentralWidget(pages_);
  windows_.SetPlace(area_);

  status_ = new StatusLine(session_, this);
  setStatusBar(status_);
  setAcceptDrops(true);

  BuildMenus();
  BuildToolbar();
  connect(&windows_, &WindowList::OpenFormsChanged, this, &MainForm::ShowPage);
  changes_ = session_.changes.Subscribe([this](const std::vector<Change>& changes) {
    const auto of = [&](Change::Kind kind) {
      return std::ranges::any_of(changes, [kind](const Change& change) { return change.kind == kind; });
    };
    if (of(Change::Kind::DatabaseList))
      QMetaObject::invokeMethod(
          this, [this] { EnableMenuItems(); }, Qt::QueuedConnection);
    else if (of(Change::Kind::Settings))
      QMetaObject::invokeMethod(status_, &StatusLine::Refresh, Qt::QueuedConnection);
    QMetaObject::invokeMethod(status_, &StatusLine::TellLastAct, Qt::QueuedConnection);
  });
  EnableMenuItems();
}

MainForm::~MainForm() {
  // Windows that go down with it are no longer shown to anybody.
  windows_.disconnect(this);
  windows_.SetPlace(nullptr);
}

// ---- Menus

void MainForm::BuildMenus() {
  const std::vector<MenuItem> items = MenuItems(session_);
  const auto isParent = [&](std::string_view name) {
    return std::ranges::any_of(items, [&](const MenuItem& item) { return item.parent == name; });
  };
  BuildCommonCommands();
  for (const MenuItem& item : items) {
    const std::string name(item.name);
    if (actions_.contains(name)) continue;
    QMenu* parent = item.parent.empty() ? nullptr : menus_.at(std::string(item.parent));
    if (isParent(item.name) || item.name == "menuDFUsers_Login_As") {
      QMenu* menu = parent == nullptr ? menuBar()->addMenu(Q(item.caption)) : parent->addMenu(Q(item.caption));
      menu->setObjectName(Q(name));
      menus_[name] = menu;
      actions_[name] = menu->menuAction();
      // The state is worked out at the moment the operator opens a menu.
      connect(menu, &QMenu::aboutToShow, this, &MainForm::GateMenus);
    } else {
      QAction* action = parent->addAction(Q(item.caption));
      action->setObjectName(Q(name));
      action->setCheckable(item.name == "menuDFOptions_Autofill");
      actions_[name] = action;
      connect(action, &QAction::triggered, this, [this, name] { RunMenuItem(name); });
    }
  }
  actions_["menuFileExit"]->setMenuRole(QAction::QuitRole);
  actions_["menuFileExit"]->setShortcut(QKeySequence::Quit);
  actions_["menuDFAdvanced_FileOpen"]->setShortcut(QKeySequence::Open);
  recent_ = new QMenu(tr("Recent Data Files"), this);
  recent_->setObjectName("menuRecent");
  menus_["MenuDataFile"]->addMenu(recent_);
  connect(menus_["MenuDataFile"], &QMenu::aboutToShow, this, &MainForm::FillRecent);
  connect(menus_["menuDFUsers_Login_As"], &QMenu::aboutToShow, this, &MainForm::FillLoginAs);
  BuildViewMenu();
  const auto help = [this](const char* name, const QString& text, const QList<QKeySequence>& key, const auto& arguments) {
    QAction* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcuts(key);
    menus_["MenuHelp"]->insertAction(menus_["MenuHelp"]->actions().value(0), action);
    connect(action, &QAction::triggered, this, [this, arguments] {
      if (windows_.Knows("HelpForm")) windows_.RunDialog("HelpForm", arguments());
    });
  };
  help("menuHelp_Keys", tr("&Keys"), {Qt::CTRL | Qt::Key_Question}, [] { return Arguments{{"Page", "keys"}}; });
  help("menuHelp_Manual", tr("&Manual"), QKeySequence::keyBindings(QKeySequence::HelpContents), [this] {
    const Window* active = windows_.ActiveForm();
    return Arguments{{"Window", active == nullptr ? "MainForm" : active->Name()}};
  });
}

// How child windows stand is the operator's to choose; it is no command of the system, so it comes last.
void MainForm::BuildViewMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Window"));
  menu->setObjectName("menuWindow");
  QAction* find = menu->addAction(Icon("Find"), tr("&Find anything"));
  find->setObjectName("menuWindow_Find");
  find->setShortcut(Qt::CTRL | Qt::Key_K);
  connect(find, &QAction::triggered, this, &MainForm::FindAnything);
  QAction* close = menu->addAction(tr("Clo&se the window"));
  close->setObjectName("menuWindow_Close");
  close->setShortcuts({Qt::CTRL | Qt::Key_W, Qt::CTRL | Qt::Key_F4});
  connect(close, &QAction::triggered, this, [this] {
    if (Window* active = windows_.ActiveForm(); active != nullptr) active->Leave();
  });
  QAction* undo = menu->addAction(tr("Take &back what was done"));
  undo->setObjectName("menuWindow_Undo");
  undo->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
  connect(undo, &QAction::triggered, this, [this] {
    CloseToolbarMenus();
    if (session_.RecordsetsOpen && windows_.Knows("UndoForm")) windows_.OpenForm("UndoForm");
  });
  menu->addSeparator();
  connect(menu->addAction(tr("As &tabs")), &QAction::triggered, area_, &MainArea::ShowAsTabs);
  connect(menu->addAction(tr("&Free")), &QAction::triggered, area_, &MainArea::ShowFree);
  connect(menu->addAction(tr("Ti&led")), &QAction::triggered, area_, &MainArea::Tile);
  connect(menu->addAction(tr("&Cascade")), &QAction::triggered, area_, &MainArea::Cascade);
  menuBar()->insertAction(menus_["MenuHelp"]->menuAction(), menu->menuAction());
}

void MainForm::GateMenus() {
  static const std::vector<std::string_view> builtIn{
      "menuFileExit",    "menuDFAdvanced_FileUpgrade", "menuDFAdvanced_CreateNewSupportFiles",
      "menuScale_Setup", "menuScale_PowerOn",          "menuScale_PowerOff"};
  for (const MenuItem& item : MenuItems(session_)) {
    QAction* action = actions_.at(std::string(item.name));
    const std::string dialog(DialogOfMenuItem(item.name));
    const bool isMenu = action->menu() != nullptr;
    const bool canRun =
        std::ranges::find(builtIn, item.name) != builtIn.end() || IsWebLink(item.name) ||
        (!dialog.empty() && windows_.Knows(dialog));
    SetWritten(*action, CaptionOf(item));
    action->setVisible(item.visible);
    action->setEnabled(item.enabled && (isMenu || canRun));
    if (action->isCheckable()) action->setChecked(item.checked);
  }
  GateCommonCommands();
  // A menu in which nothing can be chosen is off itself; children stand behind their parents.
  const std::vector<MenuItem> items = MenuItems(session_);
  for (auto item = items.rbegin(); item != items.rend(); ++item) {
    QMenu* menu = actions_.at(std::string(item->name))->menu();
    if (menu == nullptr || item->name == "menuDFUsers_Login_As" || item->parent.empty()) continue;
    const auto usable = [](const QAction* action) { return action->isVisible() && action->isEnabled(); };
    if (std::ranges::none_of(menu->actions(), usable)) menu->menuAction()->setEnabled(false);
  }
  LetterActions(menuBar()->actions());
  for (const QMenu* menu : findChildren<QMenu*>()) LetterActions(menu->actions());
}

void MainForm::FillLoginAs() {
  QMenu* menu = menus_["menuDFUsers_Login_As"];
  menu->clear();
  for (const std::string& name : UserNames(session_)) {
    // As at the button: what is on screen was built for the user before.
    connect(menu->addAction(Q(name).replace('&', "&&")), &QAction::triggered, this, [this, name] {
      RunDialogOf("PasswordForm", {"BatchForm"}, {{"Username", name}});
    });
  }
  LetterActions(menu->actions());
}

void MainForm::RunMenuItem(const std::string& name) {
  // By its key an entry is reached past the menus that it stands in.
  GateMenus();
  if (!CanBeChosen(name)) {
    QApplication::beep();
  } else if (name == "menuFileExit") {
    close();
  } else if (name == "menuDFAdvanced_CreateNewSupportFiles") {
    if (createSupportFiles_) createSupportFiles_();
    EnableMenuItems();
  } else if (name == "menuDFAdvanced_FileUpgrade") {
    // Through the check of files again, which brings an older one up to date, and opens its Databases.
    OpenFile(Q(session_.DataFileName));
  } else if (IsWebLink(name)) {
    OpenWebLink(session_, name);
  } else if (name.starts_with("menuScale_")) {
    // Windows stay as they are: a Batch that waits for the scale is one of them.
    CloseToolbarMenus();
    if (scale_) scale_(name);
    GateMenus();
  } else if (const std::string dialog(DialogOfMenuItem(name)); OnlyShows(name)) {
    CloseToolbarMenus();
    windows_.RunDialog(dialog);
  } else if (OpensForm(name)) {
    CloseToolbarMenus();
    windows_.OpenForm(dialog);
  } else if (!dialog.empty()) {
    RunDialogOf(dialog);
  }
}

void MainForm::RunDialogOf(const std::string& dialog, const std::vector<std::string>& staying,
                           const Arguments& arguments) {
  CloseToolbarMenus();
  if (!AsksFirst(dialog) && !windows_.CloseChildWindows(staying)) return;
  const auto result = windows_.RunDialog(dialog, arguments);
  raise();
  activateWindow();
  if (result && result->Has("exit")) {
    closing_ = nullptr;
    QCoreApplication::exit(0);
    return;
  }
  EnableMenuItems();
}

// ---- Toolbar

void MainForm::BuildToolbar() {
  auto* bar = addToolBar(tr("Toolbar"));
  toolbar_ = bar;
  bar->setObjectName("Toolbar1");
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  bar->setIconSize({24, 24});
  int number = 1;
  for (const ToolbarButton& button : ToolbarButtons(session_)) {
    const std::string key(button.key);
    auto* control = new QToolButton(bar);
    control->setObjectName(Q(key));
    control->setText(ButtonCaption(button.key));
    control->setIcon(Icon(Q(key)));
    control->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    control->setIconSize({24, 24});
    control->setFocusPolicy(Qt::TabFocus);
    const QKeySequence shortcut(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number % 10));
    control->setShortcut(shortcut);
    control->setToolTip(QString("%1 (%2)").arg(control->text(), shortcut.toString(QKeySequence::NativeText)));
    connect(control, &QToolButton::clicked, this, [this, key] { PressToolbarButton(key); });
    bar->addWidget(control)->setObjectName(Q(key + "Action"));
    buttons_[key] = control;
    ++number;
  }
  auto* rest = new QWidget(bar);
  rest->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  auto* line = new QHBoxLayout(rest);
  line->setContentsMargins(space::kGap, 0, space::kUnit, 0);
  line->setSpacing(space::kUnit);
  cloudName_ = new QLabel(rest);
  cloudName_->setObjectName("CloudDataBaseName");
  cloudName_->hide();
  fullName_ = new QLabel(rest);
  fullName_->setObjectName("lblFullName");
  databases_ = new QComboBox(rest);
  databases_->setObjectName("cmbDBList");
  databases_->setAccessibleName(tr("Database"));
  databases_->setToolTip(tr("The Database in use"));
  databases_->setMinimumWidth(180);
  line->addStretch();
  line->addWidget(cloudName_);
  line->addWidget(fullName_);
  line->addWidget(databases_);
  bar->addWidget(rest);
  connect(databases_, &QComboBox::textActivated, this, &MainForm::ChooseDatabase);
}

void MainForm::PressToolbarButton(const std::string& key) {
  CloseToolbarMenus();
  if (key == "Users") return PressUsers();
  if (const auto allowed = CheckToolbarButton(session_, *this, key); !allowed) {
    session_.prompt.Tell(allowed.error().title, allowed.error().text, Icon::Exclamation);
    return;
  }
  const QToolButton& pressed = *buttons_.at(key);
  area_->SetFloatingPlace(pressed.mapToGlobal(QPoint(0, pressed.height())));
  for (const ToolbarButton& button : ToolbarButtons(session_))
    if (button.key == key) windows_.OpenForm(std::string(button.target));
}

void MainForm::PressUsers() {
  RunDialogOf("LoginForm", {"BatchForm"});
}

void MainForm::CloseToolbarMenus() {
  for (const std::string_view name : kToolbarMenus)
    if (windows_.IsFormOpen(name)) windows_.CloseForm(name);
}

// ---- Databases

void MainForm::ChooseDatabase(const QString& name) {
  ChangeDatabaseOnScreen(windows_, U8(name));
  EnableMenuItems();
}

void MainForm::ShowDatabases() {
  const QSignalBlocker quiet(databases_);
  databases_->clear();
  for (const std::string& name : session_.databaseList) databases_->addItem(Q(name));
  databases_->setCurrentIndex(databases_->findText(Q(session_.CurrentDatabase)));
  databases_->setEnabled(session_.RecordsetsOpen && databases_->count() > 1);
  fullName_->setText(Q(session_.FullName));
  ShowTitle();
}

// ---- State

void MainForm::EnableMenuItems() {
  GateMenus();
  for (const ToolbarButton& button : ToolbarButtons(session_)) {
    QToolButton* control = buttons_.at(std::string(button.key));
    control->setEnabled(button.enabled && windows_.Knows(std::string(button.target)));
    findChild<QAction*>(Q(std::string(button.key) + "Action"))->setVisible(button.visible);
  }
  ShowDatabases();
  ShowCloudLine();
  NoteFile();
  status_->Refresh();
  startPage_->Refresh();
  ShowPage();
}

void MainForm::DisableMenuItems() {
  for (const char* name : {"menuDFAdvanced_Search", "menuDFAdvanced_FileRename", "menuDFUsers"})
    actions_.at(name)->setEnabled(false);
  for (const auto& [key, button] : buttons_) button->setEnabled(false);
  databases_->setEnabled(false);
}

void MainForm::SetCaption(const std::string& caption) {
  caption_ = caption;
  ShowTitle();
}

// The file, and the Database that is worked in.
void MainForm::ShowTitle() {
  QString title = Q(caption_);
  if (session_.RecordsetsOpen && !session_.CurrentDatabase.empty()) title += "   -   " + Q(session_.CurrentDatabase);
  setWindowTitle(title);
}

void MainForm::ShowCloudLine() {
  QString text;
  try {
    if (!session_.DataFolder.empty()) text = Q(CloudLine(session_));
  } catch (const Failure& failure) {
    text = tr("Cloud settings cannot be read");
    cloudName_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
  }
  // The names of Databases need the room.
  cloudName_->setText(cloudName_->fontMetrics().elidedText(text, Qt::ElideRight, kCloudWidth));
  if (cloudName_->text() != text) cloudName_->setToolTip(text);
  cloudName_->setVisible(!text.isEmpty());
}

void MainForm::ShowPage() {
  const bool any =
      std::ranges::any_of(windows_.OpenForms(), [](const Window* window) { return !window->IsFloating(); });
  pages_->setCurrentWidget(any ? static_cast<QWidget*>(area_) : startPage_);
}

// Low windows leave the height to what is worked on: the line of the state goes, the buttons of the toolbar are words.
void MainForm::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (status_ != nullptr) status_->setVisible(height() >= kStatusFrom);
  const auto style = height() < kLow ? Qt::ToolButtonTextOnly : Qt::ToolButtonTextUnderIcon;
  if (toolbar_ == nullptr || toolbar_->toolButtonStyle() == style) return;
  toolbar_->setToolButtonStyle(style);
  for (const auto& [key, button] : buttons_) button->setToolButtonStyle(style);
}

void MainForm::closeEvent(QCloseEvent* event) {
  if (session_.LoadingDatabase || (closing_ && !closing_())) {
    event->ignore();
    return;
  }
  event->accept();
  QCoreApplication::exit(0);
}

}  // namespace vellumark::desktop
