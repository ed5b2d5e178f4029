#include "desktop/labels/save_label_layout_form.h"

#include <QCompleter>

#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kLongestName = 60;

}  // namespace

SaveLabelLayoutForm::SaveLabelLayoutForm(WindowList& windowList, QWidget* owner, const LabelWindows& kind)
    : Dialog(windowList, owner, kind.save, tr("Save Label Layout As")), kind_(kind.kind) {
  Form form(*this);
  form.Row(tr("&Name"), name_ = form.Text("txtLabelName", TextRule::Any(kLongestName)));
  name_->setMinimumWidth(320);
  QStringList names;
  for (const std::string& name : LabelLayouts(session, kind_)) names += Q(name);
  auto* known = new QCompleter(names, name_);
  known->setCaseSensitivity(Qt::CaseInsensitive);
  name_->setCompleter(known);
  form.Row(form.Hint(tr("The name of another layout puts this one in its place, after a question.")));
  form.Buttons({form.Button("cmdSave", tr("&Save"), QKeySequence::Save), form.Button("cmdCancel", tr("Cancel"))});
}

void SaveLabelLayoutForm::OnOpen(const Arguments& arguments) {
  design_ = arguments.Get<std::vector<SupportRecord>>("Design");
  if (arguments.Has("LayoutName")) name_->SetText(arguments.Text("LayoutName"));
  name_->TakeFocus();
}

void SaveLabelLayoutForm::cmdSave_Click() {
  if (!Accepted(AddLabelLayout(session, kind_, name_->Text(), design_))) return;
  result.Set("LayoutName", FindLabelLayout(session, kind_, name_->Text()).value());
  accept();
}

}  // namespace vellumark::desktop
