#include "desktop/reports/find_menu.h"

#include <QKeyEvent>
#include <QLayout>
#include <array>

#include "desktop/kit/menu_keys.h"

namespace vellumark::desktop {
namespace {

constexpr int kButtonWidth = 200;

struct Entry {
  const char* button;
  const char* caption;
  const char* window;
  const char* heading = nullptr;
};

constexpr std::array<Entry, 9> kEntries{{
    {"cmdFindBasic", QT_TRANSLATE_NOOP("FindMenu", "Basic / &Additive"), "FindBasic"},
    {"cmdFindMix", QT_TRANSLATE_NOOP("FindMenu", "&Master Formula"), "FindMix"},
    {"cmdFindBatch", QT_TRANSLATE_NOOP("FindMenu", "&Batch"), "FindBatch"},
    {"cmdFindJob", QT_TRANSLATE_NOOP("FindMenu", "&Job"), "FindJob"},
    {"cmdFindDesign", QT_TRANSLATE_NOOP("FindMenu", "&Design"), "FindDesign"},
    {"cmdAllBasics", QT_TRANSLATE_NOOP("FindMenu", "All Ba&sics / Additives"), "BasicsListForm",
     QT_TRANSLATE_NOOP("FindMenu", "Lists")},
    {"cmdAllFormulas", QT_TRANSLATE_NOOP("FindMenu", "All Master &Formulas"), "FormulasListForm"},
    {"cmdAllBatches", QT_TRANSLATE_NOOP("FindMenu", "All Ba&tches"), "BatchesListForm"},
    {"cmdAllJobs", QT_TRANSLATE_NOOP("FindMenu", "All J&obs"), "JobsListForm"},
}};

}  // namespace

FindMenu::FindMenu(WindowList& windowList) : Window(windowList, "FindMenu", tr("Find"), Stands::OverIt) {
  Form form(*this);
  for (const Entry& entry : kEntries) {
    if (entry.heading != nullptr) form.Heading(tr(entry.heading));
    CommandButton* button =
        form.Button(entry.button, tr(entry.caption), [this, name = std::string(entry.window)] { Choose(name); });
    button->setMinimumWidth(kButtonWidth);
    form.Wide(button);
    if (&entry == kEntries.data()) button->setFocus();
  }
  layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void FindMenu::Choose(const std::string& name) {
  // This window is deleted by its close.
  WindowList& list = windows;
  if (Leave()) list.OpenForm(name);
}

void FindMenu::keyPressEvent(QKeyEvent* event) {
  if (!TakeMenuKey(*this, *event)) Window::keyPressEvent(event);
}

}  // namespace vellumark::desktop
