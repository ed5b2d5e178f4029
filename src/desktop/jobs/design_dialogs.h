#pragma once

#include "core/jobs/design_work.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

/// A new name for a Design, or for a copy of it. Opened with {"DesignID", id} and, for the copy, {"Copy", true}; gives
/// {"DesignID", name} back.
class JobDesign_Rename : public Dialog {
  Q_OBJECT

 public:
  JobDesign_Rename(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  bool copies_ = false;
  ValueField* oldName_;
  TextField* newName_;
};

/// Another name for a photo: of a Design, with {"Work", DesignWork*} and {"Name", name}, or of one that is not linked
/// yet, with {"Picked", PickedPhoto*}.
class JobDesign_PhotoRename : public Dialog {
  Q_OBJECT

 public:
  JobDesign_PhotoRename(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();
  void cmdCancel_Click() { reject(); }

 private:
  DesignWork* work_ = nullptr;
  PickedPhoto* picked_ = nullptr;
  ValueField* oldName_;
  TextField* newName_;
};

/// The steps of working with Designs.
class JobDesigns_Hints : public Dialog {
  Q_OBJECT

 public:
  JobDesigns_Hints(WindowList& windowList, QWidget* owner);

 public Q_SLOTS:
  void cmdClose_Click() { accept(); }
};

/// The details of a Design of a file. Opened with {"Design", Design}.
class ImportExamineLocalFileDesign : public Dialog {
  Q_OBJECT

 public:
  ImportExamineLocalFileDesign(WindowList& windowList, QWidget* owner, bool ofCloud = false);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdClose_Click() { accept(); }

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
