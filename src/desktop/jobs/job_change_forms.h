#pragma once

#include "core/jobs/job_changes.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class DesignBox;

/// A small window that changes one thing of items of a Job: it shows the value that stands, takes the new one and writes
/// it on the chosen items or on all of the Job. Opened with {"Rows", row numbers} and {"JobNumber", number}.
class JobChangeForm : public Dialog {
  Q_OBJECT

 public:
  JobChangeForm(WindowList& windowList, QWidget* owner, const QString& name, const QString& title);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 protected:
  using Rows = std::vector<std::int64_t>;
  /// The line of the value that stands.
  void BeginForm(Form& form);
  void EndForm(Form& form, const QString& toAll);
  virtual void ShowItem(const JobRecord& item, const Arguments& arguments) = 0;
  virtual Result<void> Write(const Rows& rows) = 0;

  ValueField* old_ = nullptr;

 private:
  Rows rows_;
  std::string job_;
  QLabel* items_ = nullptr;
  CheckField* toAll_ = nullptr;
};

/// `UpdateJobCostModel`, `UpdateJobVOCModel`, `UpdateJobHAPModel`.
class JobFigureForm : public JobChangeForm {
  Q_OBJECT

 public:
  JobFigureForm(WindowList& windowList, QWidget* owner, JobField field);
  static QString NameOf(JobField field);

 protected:
  void ShowItem(const JobRecord& item, const Arguments& arguments) override;
  Result<void> Write(const Rows& rows) override;

 private:
  JobField field_;
  NumberField* value_;
};

class UpdateJobDesignID : public JobChangeForm {
  Q_OBJECT

 public:
  UpdateJobDesignID(WindowList& windowList, QWidget* owner);

 protected:
  void ShowItem(const JobRecord& item, const Arguments& arguments) override;
  Result<void> Write(const Rows& rows) override;

 private:
  DesignBox* design_;
};

/// A text of the house's own, or with {"IsNumber", true} a number: the one with {"Number", 0 to 5}.
class UpdateJobUDText : public JobChangeForm {
  Q_OBJECT

 public:
  UpdateJobUDText(WindowList& windowList, QWidget* owner);

 protected:
  void ShowItem(const JobRecord& item, const Arguments& arguments) override;
  Result<void> Write(const Rows& rows) override;

 private:
  int number_ = 0;
  bool isNumber_ = false;
  QLabel* caption_;
  QLabel* required_;
  TextField* text_;
  NumberField* value_;
};

class JobsNewReturnDate : public JobChangeForm {
  Q_OBJECT

 public:
  JobsNewReturnDate(WindowList& windowList, QWidget* owner);

 protected:
  void ShowItem(const JobRecord& item, const Arguments& arguments) override;
  Result<void> Write(const Rows& rows) override;

 private:
  DateField* date_;
};

/// Closes a Job. Opened with {"JobNumber", number}.
class JobClosingDate : public Dialog {
  Q_OBJECT

 public:
  JobClosingDate(WindowList& windowList, QWidget* owner);
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdSave_Click();

 private:
  ValueField* job_;
  QLabel* old_;
  DateField* date_;
};

}  // namespace vellumark::desktop
