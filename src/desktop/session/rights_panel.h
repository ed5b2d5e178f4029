#pragma once

#include <QLabel>
#include <QWidget>
#include <vector>

#include "core/session/rights.h"
#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// The rights of a user, one group each, with the line under it that says what the choice means. What can be edited has
/// option buttons, a command that is allowed or not has a check box.
class RightsPanel : public QWidget {
  Q_OBJECT

 public:
  explicit RightsPanel(FormHost& host);

  UserRights Rights() const;
  /// A value beyond the full one opens nothing, so it is shown as the least.
  void SetRights(const UserRights& rights);
  /// Nothing can be chosen any more; the lines are what is read.
  void SetReadOnly();

 private:
  struct Group {
    const RightField* right;
    RadioField* options = nullptr;
    CheckField* allowed = nullptr;
    QLabel* meaning = nullptr;
  };
  Group Options(Form& form, const RightField& right);
  Group Allowed(Form& form, const RightField& right);
  void ShowMeanings();

  std::vector<Group> groups_;
};

}  // namespace vellumark::desktop
