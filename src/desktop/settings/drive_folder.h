#pragma once

#include <QString>
#include <functional>

namespace vellumark::desktop {

class ComboField;
class CommandButton;
class Form;
class TextField;

/// The drives that are there and a folder on one of them, which only the file dialog changes: cmbDrive, cmdRefresh,
/// txtFolder and cmdBrowse, in two rows of a form. A member of the window.
class DriveFolder {
 public:
  using Browse = std::function<QString(const QString& from)>;
  /// `standard` is shown where the wanted folder is not there.
  DriveFolder(Form& form, QString standard, Browse browse);

  /// The wanted folder; it is shown again when a refresh finds it.
  void Want(const QString& folder);
  /// The folder that is shown, in the platform's way of writing.
  const TextField& Field() const { return *folder_; }
  TextField& Field() { return *folder_; }
  /// Whether it is still there; the drives are read anew when not.
  bool IsThere();
  void SetEnabled(bool enabled);

 private:
  void ListDrives();
  void Refresh();
  void Show(const QString& folder);

  QString standard_;
  QString wanted_;
  ComboField* drive_;
  CommandButton* refresh_;
  TextField* folder_;
  CommandButton* browse_;
};

}  // namespace vellumark::desktop
