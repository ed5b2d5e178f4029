#include "desktop/colors/where_used_form.h"

#include "core/colors/where_used.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {

WhereUsedForm::WhereUsedForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "WhereUsedForm", tr("Where Used")) {
  Form form(*this);
  form.Wide(text_ = form.Label("lblMsg"));
  form.Wide(uses_ = form.Table("fgUses"), 1);
  uses_->SetColumns({GridColumn::Text(tr("Used in"), 160), GridColumn::Text(tr("Name"), 368)});
  uses_->ShowFilter(tr("Filter"));
  uses_->SetEmptyText(tr("Used nowhere"));
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  resize(600, 520);
}

void WhereUsedForm::OnOpen(const Arguments& arguments) {
  const std::string name = arguments.Text("Color_Name");
  const ColorUses uses = FindUses(session, arguments.Get<ColorKind>("Kind"), name);
  text_->setText(
      tr("Uses of %1: %2").arg(Q(name)).arg(uses.formulas.size() + uses.additiveSets.size() + uses.designs.size()));
  auto source = std::make_shared<LeadingTable>();
  const auto add = [&](const QString& kind, const std::vector<std::string>& names, RowTarget::Kind leads) {
    for (const std::string& user : names)
      source->Add({U8(kind), user},
                  leads == RowTarget::Kind::None
                      ? std::vector<RowTarget>{}
                      : std::vector<RowTarget>{{.kind = leads, .database = session.CurrentDatabase, .name = user}});
  };
  add(tr("Master Formula"), uses.formulas, RowTarget::Kind::Mix);
  add(tr("Additive Set"), uses.additiveSets, RowTarget::Kind::None);
  add(tr("Job Design"), uses.designs, RowTarget::Kind::Design);
  uses_->SetSource(source);
}

}  // namespace vellumark::desktop
