#pragma once

#include "core/jobs/design_work.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// Both are asked by a NewNameDialog: a new name for a Design, or with {"Copy", true} for a copy of it; another name for a
/// photo, of a Design, with {"Work", DesignWork*}, or of one that is not linked yet, with {"Picked", PickedPhoto*}.
void RegisterDesignNames(WindowList& windows);

/// The steps of working with Designs.
class JobDesigns_Hints : public Dialog {
  Q_OBJECT

 public:
  JobDesigns_Hints(WindowList& windowList, QWidget* owner);
};

/// The details of a Design of a file. Opened with {"Design", Design}.
class ImportExamineLocalFileDesign : public Dialog {
  Q_OBJECT

 public:
  ImportExamineLocalFileDesign(WindowList& windowList, QWidget* owner, bool ofCloud = false);
  void OnOpen(const Arguments& arguments) override;

 private:
  QLabel* id_;
  QLabel* description_;
  QLabel* size_;
  QLabel* photos_;
  QLabel* notes_;
  std::shared_ptr<LeadingTable> rows_;
  Grid* colors_;
};

}  // namespace vellumark::desktop
