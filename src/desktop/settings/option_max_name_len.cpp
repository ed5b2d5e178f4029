#include "desktop/settings/option_max_name_len.h"

#include <QLayout>

#include "core/session/options.h"
#include "desktop/settings/explain.h"

namespace vellumark::desktop {

OptionMaxNameLen::OptionMaxNameLen(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "OptionMaxNameLen", tr("Name Length")) {
  Form form(*this);
  form.Row(tr("&Longest name"),
           {length_ = form.Text("txtNameLength", TextRule::Digits(2)), form.Hint(tr("characters, 10 to 30"))});
  form.Row(Explain(form, tr("Color names and Color Codes can be typed up to this length. Names that are longer already "
                            "stay as they are.")));
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
  layout()->setSizeConstraint(QLayout::SetFixedSize);
  length_->SetText(std::to_string(session.NameLength));
}

void OptionMaxNameLen::cmdSave_Click() {
  if (Accepted(SaveNameLength(session, length_->Text()))) accept();
}

}  // namespace vellumark::desktop
