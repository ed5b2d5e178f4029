#include "desktop/jobs/job_menu.h"

#include <QKeyEvent>
#include <QLayout>
#include <array>

#include "core/shell/gating.h"
#include "desktop/jobs/open_forms.h"
#include "desktop/kit/menu_keys.h"

namespace vellumark::desktop {
namespace {

constexpr int kButtonWidth = 240;

struct Entry {
  const char* button;
  const char* caption;
  const char* window;
  const char* way;  // of the interlocks
  const char* heading = nullptr;
};

constexpr std::array<Entry, 7> kEntries{{
    {"cmdJobs", QT_TRANSLATE_NOOP("JobMenu", "&Job Records"), "JobForm", "JobForm"},
    {"cmdOut", QT_TRANSLATE_NOOP("JobMenu", "&Out on Jobs"), "JobsOutForm", ""},
    {"cmdDesigns", QT_TRANSLATE_NOOP("JobMenu", "Job &Designs"), "JobDesigns", ""},
    {"cmdInkEst", QT_TRANSLATE_NOOP("JobMenu", "&Ink Estimator"), "InkEstForm", "InkEst"},
    {"cmdExportJobs", QT_TRANSLATE_NOOP("JobMenu", "&Export Job Records"), "ExportJobRecords", "",
     QT_TRANSLATE_NOOP("JobMenu", "Files")},
    {"cmdExportBatches", QT_TRANSLATE_NOOP("JobMenu", "Export &Batch Records"), "ExportBatchesForm", ""},
    {"cmdDesignFiles", QT_TRANSLATE_NOOP("JobMenu", "De&signs - Export and Import"), "DB_ImportExport_Designs", ""},
}};

}  // namespace

JobMenu::JobMenu(WindowList& windowList) : Window(windowList, "JobMenu", tr("Jobs"), Stands::OverIt) {
  Form form(*this);
  for (const Entry& entry : kEntries) {
    if (entry.heading != nullptr) form.Heading(tr(entry.heading));
    CommandButton* button = form.Button(entry.button, tr(entry.caption), [this, entry] {
      Choose(entry.window, entry.way);
    });
    button->setMinimumWidth(kButtonWidth);
    form.Wide(button);
    if (&entry == kEntries.data()) button->setFocus();
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void JobMenu::Choose(const std::string& name, const char* way) {
  if (!Accepted(CheckInterlocks(OpenFormsOf(windows), way))) return;
  // This window is deleted by its close.
  WindowList& list = windows;
  if (Leave()) list.OpenForm(name);
}

void JobMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeMenuKey(*this, *event)) Window::keyPressEvent(event);
}

}  // namespace vellumark::desktop
