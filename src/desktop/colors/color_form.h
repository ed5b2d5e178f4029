#pragma once

#include <optional>
#include <string>

#include "core/colors/basic_work.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

class InventoryPanel;
class MeasurementsPanel;
class SwatchView;

/// What the windows of Basic Colors and of Master Formulas have in common: the name with its completion, the walk from
/// record to record, the commands that lead elsewhere, and what becomes of a record that was deleted in another window.
class ColorForm : public Window {
  Q_OBJECT

 public:
  void OnOpen(const Arguments& arguments) override;

 public Q_SLOTS:
  void cmdCancel_Click();
  void cmdPrevious_Click();
  void cmdNext_Click();
  void cmdFind_Click();
  void cmdWhereUsed_Click();
  void cmdPrint_Click() override;
  void cmdPrintLabel_Click();
  /// The reports about colours.
  void cmdPrintMultiple_Click();
  void ImgInvLow_Click();

 protected:
  /// The record on screen.
  struct Shown {
    std::string name;
    bool stored = false;  ///< it is on file
  };

  /// `lowTitle` heads what is told of a colour below its reorder point.
  ColorForm(WindowList& windowList, const char* name, const QString& title, ColorKind kind, const QString& lowTitle);

  /// Nothing while the window is empty.
  virtual std::optional<Shown> OnScreen() const = 0;
  virtual Result<NameEntry> Enter(const std::string& typed) = 0;
  virtual void Clear() = 0;
  virtual void ShowColor(const std::string& name) = 0;
  virtual void ShowNew(const std::string& name) = 0;
  /// Asks about unfinished work, checks and writes. False: the operator stays.
  virtual bool Store() = 0;

  /// The name, its ink and what is said of the record beside it.
  void BuildName(Form& form);
  CommandButton* FindButton(Form& form);
  void Listen();
  /// The commands that depend on the record alone. `low`: it is below its reorder point.
  void EnableCommands(bool low);
  /// False where the operator goes back to an entry of stock or of a measurement that was begun.
  bool MayLeaveEntries();
  bool PanelsChanged() const;
  /// Clears the window of a record that went, without drawing the focus to it.
  void ClearBehind();
  /// Clears it and begins anew with the name.
  void StartOver();

  NameBox* name_ = nullptr;
  SwatchView* ink_ = nullptr;
  QLabel* state_ = nullptr;
  CommandButton* low_ = nullptr;
  CommandButton* multiple_ = nullptr;
  InventoryPanel* inventory_ = nullptr;
  MeasurementsPanel* measurements_ = nullptr;
  CommandButton* save_ = nullptr;
  CommandButton* cancel_ = nullptr;
  CommandButton* delete_ = nullptr;
  CommandButton* rename_ = nullptr;
  CommandButton* whereUsed_ = nullptr;
  CommandButton* print_ = nullptr;
  CommandButton* label_ = nullptr;

 private:
  void NameLeft(QWidget* to);
  void EnterName(const std::string& typed);
  void Walk(bool forward);

  ColorKind kind_;
  QString lowTitle_;
};

}  // namespace vellumark::desktop
