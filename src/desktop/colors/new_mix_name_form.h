#pragma once

#include "desktop/colors/new_name_form.h"

namespace vellumark::desktop {

/// The rename of a Master Formula; it is never merged.
class NewMixNameForm : public NewNameForm {
  Q_OBJECT

 public:
  NewMixNameForm(WindowList& windowList, QWidget* owner);

 protected:
  Result<Renamed> Rename(const std::string& oldName, const std::string& typed) override;
};

}  // namespace vellumark::desktop
