#pragma once

#include <filesystem>
#include <memory>

#include "core/backup/look_into.h"
#include "desktop/kit/grid.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/window.h"

class QLabel;

namespace vellumark::desktop {

/// What a backup holds otherwise than the open Database, and one formula or Batch of it taken back.
class LookIntoSetForm : public Dialog {
  Q_OBJECT

 public:
  LookIntoSetForm(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdTake_Click();
  void cmdClose_Click() { accept(); }

 private:
  void Show();
  const LookRow* Chosen() const;

  std::filesystem::path dataFile_;
  QLabel* about_;
  QLabel* nothing_;
  Grid* grid_;
  std::shared_ptr<RecordRows<LookRow>> rows_;
  CommandButton* take_;
};

}  // namespace vellumark::desktop
