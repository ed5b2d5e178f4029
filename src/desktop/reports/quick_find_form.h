#pragma once

#include <QTimer>
#include <memory>

#include "core/reports/quick_find.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// One field over everything that has a name, and the commands. {"Commands", names and what is said about them} adds
/// these; it gives back {"Hit", QuickHit}. The index is shared by all of its openings.
class QuickFindForm : public Dialog {
  Q_OBJECT

 public:
  QuickFindForm(WindowList& windowList, QWidget* owner, std::shared_ptr<QuickIndex> index);
  ~QuickFindForm() override;

  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOpen_Click();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Source;
  void Search();
  void ReadOn();

  std::shared_ptr<QuickIndex> index_;
  std::shared_ptr<Source> source_;
  QTimer reading_;
  TextField* typed_;
  Grid* list_;
  CommandButton* open_;
};

}  // namespace vellumark::desktop
