#include "desktop/session/rights_panel.h"

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

bool IsAboutEditing(const RightField& right) {
  return right.field.starts_with("Edit_");
}

}  // namespace

RightsPanel::RightsPanel(FormHost& host) {
  Form form(host, *this);
  std::vector<Form> columns = form.Columns(2);
  columns[1].Heading(tr("Commands"));
  for (const RightField& right : RightFields()) {
    groups_.push_back(IsAboutEditing(right) ? Options(columns[0], right) : Allowed(columns[1], right));
  }
  ShowMeanings();
}

RightsPanel::Group RightsPanel::Options(Form& form, const RightField& right) {
  const QString field = Q(right.field);
  std::vector<RadioField::Option> options;
  if (right.full == 2) options.push_back({"Opt" + field + "_Hide", tr("Hide")});
  options.push_back({"Opt" + field + "_View", tr("View only")});
  options.push_back({"Opt" + field + "_Edit", tr("View and edit")});
  form.Heading(Q(right.caption));
  RadioField* radio = form.Radio("Opt" + field, options, Qt::Horizontal);
  radio->Means(std::string(right.field));
  radio->setAccessibleName(Q(right.caption));
  connect(radio, &RadioField::ChosenChanged, this, &RightsPanel::ShowMeanings);
  QLabel* meaning = form.Hint({}, "lbl" + field);
  form.Wide(radio);
  form.Wide(meaning);
  return {&right, radio, nullptr, meaning};
}

RightsPanel::Group RightsPanel::Allowed(Form& form, const RightField& right) {
  const QString field = Q(right.field);
  CheckField* check = form.Check("chk" + field, Q(right.caption));
  check->Means(std::string(right.field));
  connect(check, &QCheckBox::toggled, this, &RightsPanel::ShowMeanings);
  QLabel* meaning = form.Hint({}, "lbl" + field);
  meaning->setContentsMargins(space::kGroup, 0, 0, space::kUnit);
  form.Wide(check);
  form.Wide(meaning);
  return {&right, nullptr, check, meaning};
}

UserRights RightsPanel::Rights() const {
  UserRights rights;
  for (const Group& group : groups_) {
    const int value = group.options != nullptr ? group.options->Chosen() : group.allowed->isChecked() ? 1 : 0;
    rights.*group.right->value = static_cast<std::uint8_t>(value);
  }
  return rights;
}

void RightsPanel::SetRights(const UserRights& rights) {
  for (const Group& group : groups_) {
    const std::uint8_t value = rights.*group.right->value;
    const std::uint8_t shown = value <= group.right->full ? value : 0;
    if (group.options != nullptr) {
      group.options->Choose(shown);
    } else {
      group.allowed->setChecked(shown == 1);
    }
  }
}

void RightsPanel::SetReadOnly() {
  for (const Group& group : groups_) {
    if (group.options != nullptr) group.options->setEnabled(false);
    if (group.allowed != nullptr) group.allowed->setEnabled(false);
    group.meaning->setProperty("role", {});
  }
}

void RightsPanel::ShowMeanings() {
  // Building the groups is heard too, before there is a line to write to.
  const std::vector<PermissionText> texts = PermissionTexts(Rights());
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    const QString meaning = Q(texts[i].text);
    groups_[i].meaning->setText(meaning);
    if (groups_[i].allowed != nullptr) groups_[i].allowed->setAccessibleDescription(meaning);
    if (groups_[i].options != nullptr) groups_[i].options->setAccessibleDescription(meaning);
  }
}

}  // namespace vellumark::desktop
