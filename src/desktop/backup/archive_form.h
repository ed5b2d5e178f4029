#pragma once

#include "core/backup/archive.h"
#include "desktop/kit/window.h"

class QLabel;

namespace vellumark::desktop {

class Grid;

/// Offers to move old Batches and Job Records into an archive, with what would move from each Database and year.
class ArchiveForm : public Dialog {
  Q_OBJECT

 public:
  ArchiveForm(WindowList& windowList, QWidget* owner);
  void UpdateEnabled() override;

 public Q_SLOTS:
  void cmdArchive_Click();
  void cmdSkip_Click() { reject(); }

 private:
  ArchivePreview preview_;
  CommandButton* archive_;
};

}  // namespace vellumark::desktop
