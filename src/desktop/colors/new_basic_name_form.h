#pragma once

#include "desktop/colors/new_name_form.h"

namespace vellumark::desktop {

/// The rename of a Basic Color, which may merge it into the colour that bears the name.
class NewBasicNameForm : public NewNameForm {
  Q_OBJECT

 public:
  NewBasicNameForm(WindowList& windowList, QWidget* owner);

 protected:
  Result<Renamed> Rename(const std::string& oldName, const std::string& typed) override;
};

}  // namespace vellumark::desktop
