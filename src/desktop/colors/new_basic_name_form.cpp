#include "desktop/colors/new_basic_name_form.h"

namespace vellumark::desktop {

NewBasicNameForm::NewBasicNameForm(WindowList& windowList, QWidget* owner)
    : NewNameForm(windowList, owner, "NewBasicNameForm", tr("Rename Basic Color")) {}

Result<Renamed> NewBasicNameForm::Rename(const std::string& oldName, const std::string& typed) {
  return RenameBasic(session, oldName, typed);
}

}  // namespace vellumark::desktop
