// What the main window remembers from one day to the next.

#include <QCryptographicHash>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <algorithm>
#include <array>
#include <string_view>

#include "core/session/acts.h"
#include "desktop/kit/layout_memory.h"
#include "desktop/kit/main_area.h"
#include "desktop/kit/text.h"
#include "desktop/kit/window.h"
#include "desktop/shell/main_form.h"

namespace vellumark::desktop {
namespace {

constexpr const char* kPlace = "main/place";
constexpr const char* kFree = "main/free";
constexpr const char* kActive = "active";

/// A window that comes back, what is passed to it, and the field that tells it.
struct Reopening {
  const char* window;
  const char* argument = "";
  const char* field = "";
};

// A Batch comes back empty: a saved one that is opened takes its ingredients back, which nobody asked for.
constexpr std::array<Reopening, 12> kReopenings{{{"BatchForm"},
                                                 {"BasicColorsForm", "FindRecord", "cmbColorName"},
                                                 {"MixColorsForm", "FindRecord", "cmbColorName"},
                                                 {"JobForm", "JobNumber", "cmbJobNumber"},
                                                 {"JobDesigns", "DesignID", "cmbDesignID"},
                                                 {"JobsOutForm"},
                                                 {"StockHistoryForm"},
                                                 {"ReportsForm"},
                                                 {"BasicsListForm"},
                                                 {"FormulasListForm"},
                                                 {"BatchesListForm"},
                                                 {"JobsListForm"}}};

// A user has windows of his own in each Data File.
QString WindowsKey(const Session& session) {
  const QByteArray file = QCryptographicHash::hash(Q(session.DataFileName).toUtf8(), QCryptographicHash::Md5).toHex();
  return KeyOfUser(session, "open/" + QString::fromLatin1(file));
}

}  // namespace

bool MainForm::RecallPlace() {
  return restoreGeometry(memory::Recall(kPlace).toByteArray());
}

void MainForm::Remember() {
  memory::Keep(kPlace, saveGeometry());
  memory::Keep(kFree, area_->viewMode() == QMdiArea::SubWindowView);
  if (!session_.RecordsetsOpen) return;
  QVariantList open;
  for (const Window* window : windows_.OpenForms()) {
    const auto reopening = std::ranges::find(kReopenings, window->Name(),
                                             [](const Reopening& one) { return std::string_view(one.window); });
    if (reopening == kReopenings.end()) continue;
    // What is not saved yet is asked about as the window closes, and may be nothing tomorrow.
    const auto* field = window->InEdit() ? nullptr : window->findChild<QLineEdit*>(reopening->field);
    const QString value = field == nullptr ? QString() : field->text();
    open << QVariant(QStringList{Q(window->Name()), value.isEmpty() ? QString() : reopening->argument, value,
                                 window == area_->Active() ? kActive : ""});
  }
  const QString key = WindowsKey(session_);
  if (!open.isEmpty() || memory::Recall(key).isValid()) memory::Keep(key, open);
}

void MainForm::ReopenWindows() {
  if (memory::Recall(kFree).toBool()) area_->ShowFree();
  if (!session_.RecordsetsOpen) return;
  std::string active;
  for (const QVariant& kept : memory::Recall(WindowsKey(session_)).toList()) {
    const QStringList parts = kept.toStringList();
    const std::string name = U8(parts.value(0));
    const auto act = ActOfWindow(name);
    if (!windows_.Knows(name) || (act && !MayDo(session_, *act))) continue;
    Arguments arguments;
    if (!parts.value(1).isEmpty()) arguments.Set(U8(parts[1]), U8(parts.value(2)));
    windows_.OpenForm(name, arguments);
    if (parts.value(3) == kActive) active = name;
  }
  if (windows_.IsFormOpen(active)) windows_.OpenForm(active);
}

}  // namespace vellumark::desktop
