#pragma once

#include <QDialog>
#include <QString>
#include <QWidget>

#include "desktop/kit/arguments.h"
#include "desktop/kit/form.h"
#include "desktop/kit/form_host.h"
#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

/// A child window of the main window. Its name is the system's name of the window, under which others open it.
///
/// The commands that the main window passes on are the slots below; each exists in a window that has a button of the
/// same role. Escape closes, as does a button cmdClose.
class Window : public QWidget, public FormHost {
  Q_OBJECT

 public:
  /// Small floating windows (the menus of the toolbar) stand over the main area, not in a tab.
  enum class Stands { InTheArea, OverIt };
  Window(WindowList& windowList, const QString& name, const QString& title, Stands stands = Stands::InTheArea);
  ~Window() override;

  std::string Name() const { return objectName().toStdString(); }
  bool IsFloating() const { return stands_ == Stands::OverIt; }
  /// The button of a common command ("cmdSave", "cmdDelete", "cmdPrint") is there and can be used.
  bool CanDo(const QString& command) const;
  /// Clicks it, if it can be used.
  void Do(const QString& command);
  /// Asks and closes; false when the window stays.
  bool Leave();

 public Q_SLOTS:
  virtual void cmdSave_Click() {}
  virtual void cmdDelete_Click() {}
  virtual void cmdPrint_Click() {}
  void cmdClose_Click() { Leave(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Stands stands_;
};

/// A modal window. Escape, its close button and a button cmdCancel or cmdClose cancel, after asking MayClose. Its size
/// is remembered.
class Dialog : public QDialog, public FormHost {
  Q_OBJECT

 public:
  Dialog(WindowList& windowList, QWidget* owner, const QString& name, const QString& title);
  ~Dialog() override;

  using FormHost::Accepted;  // not QDialog's own code of that name

  std::string Name() const { return objectName().toStdString(); }
  /// What it gives back to whoever ran it by its name.
  Arguments result;

  void accept() override;
  void reject() override;

 public Q_SLOTS:
  void cmdCancel_Click() { reject(); }
  void cmdClose_Click() { reject(); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void RememberSize();
};

/// Small things about windows that the operator wants to find again, such as sizes: one file per user.
namespace memory {
void Keep(const QString& key, const QVariant& value);
QVariant Recall(const QString& key);
}  // namespace memory

}  // namespace vellumark::desktop
