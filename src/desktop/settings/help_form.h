#pragma once

#include "desktop/kit/window.h"

class QListWidget;
class QTextBrowser;

namespace vellumark::desktop {

/// The manual. {"Window", name} opens the page on that window, {"Page", name} a page by its file.
class HelpForm : public Dialog {
  Q_OBJECT

 public:
  HelpForm(WindowList& windowList, QWidget* owner);

  void OnOpen(const Arguments& arguments) override;

 private:
  void Show(const QString& page);

  QListWidget* pages_;
  QTextBrowser* text_;
};

/// The page of the manual on a window; the first page for one that it says nothing about.
QString HelpPageOf(const std::string& window);

}  // namespace vellumark::desktop
