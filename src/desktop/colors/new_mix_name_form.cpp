#include "desktop/colors/new_mix_name_form.h"

namespace vellumark::desktop {

NewMixNameForm::NewMixNameForm(WindowList& windowList, QWidget* owner)
    : NewNameForm(windowList, owner, "NewMixNameForm", tr("Rename Master Formula")) {}

Result<Renamed> NewMixNameForm::Rename(const std::string& oldName, const std::string& typed) {
  return RenameColor(session, oldName, typed);
}

}  // namespace vellumark::desktop
