#include "desktop/jobs/hint_pages.h"

namespace vellumark::desktop {

void AddHintPages(Form& form, const QString& name, const std::vector<HintPage>& pages) {
  TabSet tabs = form.Tabs(name);
  for (const auto& [title, text] : pages) {
    Form page = tabs.Page(title);
    QLabel* label = page.Label({}, text);
    label->setWordWrap(true);
    page.Wide(label);
    page.Stretch();
  }
}

}  // namespace vellumark::desktop
