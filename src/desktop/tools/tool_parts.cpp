#include "desktop/tools/tool_parts.h"

#include <QCoreApplication>
#include <QHBoxLayout>

#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kBackupDialog = "BackupFileLocationForm";
constexpr int kIconSize = 20;

}  // namespace

void ToolButtons(FormHost& host, Form& form, std::initializer_list<QPushButton*> buttons) {
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, space::kUnit, 0, 0);
  layout->setSpacing(space::kUnit);
  WindowList& windows = host.windows;
  const QString text =
      QCoreApplication::translate("ToolButtons", "Warning: Back up the Data File before using this function");
  CommandButton* backup = form.Button("cmdBackup", QCoreApplication::translate("ToolButtons", "&Backup"),
                                      [&windows] { windows.RunDialog(kBackupDialog); });
  backup->setEnabled(windows.Knows(kBackupDialog));
  if (!backup->isEnabled())
    backup->setToolTip(QCoreApplication::translate("ToolButtons",
                                                   "This program cannot make backups yet. Copy the "
                                                   "Data File while it is closed."));
  layout->addWidget(new IconView("warning", kIconSize));
  layout->addWidget(form.Label("lblBackupWarning", text));
  layout->addWidget(backup);
  layout->addStretch();
  for (QPushButton* button : buttons) layout->addWidget(button);
  form.Wide(line);
}

TwoSides Sides(FormHost& host, Form& form, int leftWidth) {
  auto* box = new QWidget;
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(space::kGroup);
  auto* left = new QWidget;
  left->setFixedWidth(leftWidth);
  auto* right = new QWidget;
  layout->addWidget(left);
  layout->addWidget(right, 1);
  const TwoSides sides{Form(host, *left), Form(host, *right)};
  form.Wide(box, 1);
  return sides;
}

}  // namespace vellumark::desktop
