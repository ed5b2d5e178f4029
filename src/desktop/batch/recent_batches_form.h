#pragma once

#include <memory>

#include "core/batch/open.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// The Batches entered last, newest first, to take one from. Gives {"BatchNo", number}.
class RecentBatchesForm : public Dialog {
  Q_OBJECT

 public:
  RecentBatchesForm(WindowList& windowList, QWidget* owner);
  ~RecentBatchesForm() override;
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdOpen_Click();

 private:
  class Source;
  std::shared_ptr<Source> source_;
  Grid* list_;
  CommandButton* open_;
};

}  // namespace vellumark::desktop
