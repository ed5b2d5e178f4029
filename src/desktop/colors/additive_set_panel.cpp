#include "desktop/colors/additive_set_panel.h"

#include <QGridLayout>
#include <QStackedWidget>
#include <algorithm>
#include <array>

#include "core/base/number.h"
#include "core/base/text.h"
#include "desktop/colors/new_additive_set_panel.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kPercentDecimals = 2;
constexpr int kPanelWidth = 336;

}  // namespace

/// What a set holds, to be read: a marked line for each ingredient, and the total.
class SetDetail : public QWidget {
 public:
  explicit SetDetail(const QString& word) {
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(space::kUnit);
    grid->setVerticalSpacing(space::kTight);
    grid->setColumnStretch(1, 1);
    for (int row = 0; row < schema::kSetSlots; ++row) {
      Line& line = lines_[static_cast<std::size_t>(row)];
      const QString number = QString::number(row);
      line.mark = new IconView("additions", 16, "lbl" + word + "Symbol" + number);
      line.name = new QLabel;
      line.name->setObjectName("lbl" + word + "Ing" + number);
      line.percent = new QLabel;
      line.percent->setObjectName("lbl" + word + "Percent" + number);
      Add(*grid, row, line);
    }
    total_.mark = new QWidget;
    total_.name = new QLabel(AdditiveSetPanel::tr("Total of the set"));
    total_.name->setProperty("role", "hint");
    total_.percent = new QLabel;
    total_.percent->setObjectName("lbl" + word + "Total");
    Add(*grid, schema::kSetSlots, total_);
    Show(nullptr);
  }

  void Show(const AdditiveSet* set) {
    const Recipe rows = set == nullptr ? Recipe{} : set->Rows();
    for (std::size_t row = 0; row < lines_.size(); ++row) {
      const bool used = row < rows.size();
      const Line& line = lines_[row];
      line.mark->setVisible(used);
      line.name->setText(used ? Q(rows[row].name) : QString());
      line.percent->setText(used ? Percent(rows[row].amount) : QString());
    }
    total_.name->setVisible(set != nullptr);
    total_.percent->setText(set == nullptr ? QString() : Percent(TotalOf(rows)));
  }

 private:
  struct Line {
    QWidget* mark;
    QLabel* name;
    QLabel* percent;
  };
  static QString Percent(double value) { return QString("%1 %").arg(Q(Fixed(value, kPercentDecimals))); }
  static void Add(QGridLayout& grid, int row, const Line& line) {
    line.percent->setFont(Look::Figures(1.2));
    grid.setRowMinimumHeight(row, space::kGroup);
    grid.addWidget(line.mark, row, 0);
    grid.addWidget(line.name, row, 1);
    grid.addWidget(line.percent, row, 2, Qt::AlignRight | Qt::AlignVCenter);
  }

  std::array<Line, schema::kSetSlots> lines_{};
  Line total_{};
};

AdditiveSetPanel::AdditiveSetPanel(FormHost& host, Form form) : QObject(&host.Self()), host_(host) {
  pages_ = new QStackedWidget;
  pages_->setMinimumWidth(kPanelWidth);
  form.Wide(pages_, 1);
  const auto page = [&](const char* name) {
    auto* part = new QWidget;
    part->setObjectName(name);
    part->setProperty("flush", true);
    pages_->addWidget(part);
    return part;
  };
  BuildChosen(Form(host, *page("FrameAdditiveSet")));
  new_ = new NewAdditiveSetPanel(host);
  auto* view = page("FrameViewSetDetail");
  host.AddLate(*view, *create_, [this, view] { BuildView(Form(host_, *view)); });
  auto* create = page("FrameCreateNewAddSet");
  host.AddLate(*create, *create_, [this, create] { new_->Build(Form(host_, *create)); });
  connect(pages_, &QStackedWidget::currentChanged, this, [this] { host_.BuildLate(*pages_->currentWidget()); });
  Refresh();
}

void AdditiveSetPanel::BuildChosen(Form form) {
  form.Heading(tr("Additive Set"));
  list_ = form.Combo("lstAdditiveSets");
  list_->Means("AddSetName");
  list_->DoNotTrack();
  list_->setAccessibleName(tr("Additive Set of the formula"));
  list_->OnChosen([this](int index) {
    const std::string name = index <= 0 ? std::string() : list_->Text();
    // Until it is accepted the old one stands.
    list_->setCurrentIndex(std::max(list_->findText(Q(chosen_)), 0));
    Q_EMIT Picked(name);
  });
  form.Wide(list_);
  form.Wide(detail_ = new SetDetail("Add"));
  view_ = form.Link("cmdViewAddSet", tr("&Look at a set ..."), [this] {
    pages_->setCurrentIndex(1);
    host_.FocusField("cmbAddSetName");
  });
  create_ = form.Link("cmdNewAddSet", tr("New se&t ..."), [this] {
    ShowNew();
    new_->FocusName();
  });
  auto* links = new QWidget;
  auto* across = new QHBoxLayout(links);
  across->setContentsMargins(0, 0, 0, 0);
  across->addWidget(view_);
  across->addWidget(create_);
  across->addStretch(1);
  form.Wide(links);
}

void AdditiveSetPanel::BuildView(Form form) {
  form.Heading(tr("Look at a set"));
  viewed_ = form.Combo("cmbAddSetName");
  viewed_->DoNotTrack();
  viewed_->setAccessibleName(tr("Additive Set to look at"));
  viewed_->OnChosen([this](int) { viewedDetail_->Show(Find(viewed_->Text())); });
  form.Wide(viewed_);
  form.Wide(viewedDetail_ = new SetDetail("View"));
  form.ButtonsWithoutDefault({form.Button("cmdClearViewAddSetDetail", tr("Close"), [this] {
    viewed_->setCurrentIndex(-1);
    viewedDetail_->Show(nullptr);
    ShowChosen();
    host_.FocusField("lstAdditiveSets");
  })});
  FillView();
}

// ---- The sets

const AdditiveSet* AdditiveSetPanel::Find(const std::string& setName) const {
  const auto found =
      std::ranges::find_if(sets_, [&](const AdditiveSet& set) { return EqualNoCase(set.SetName, setName); });
  return found == sets_.end() ? nullptr : &*found;
}

void AdditiveSetPanel::FillLists() {
  std::vector<std::string> names;
  for (const AdditiveSet& set : sets_) names.push_back(set.SetName);
  if (viewed_ != nullptr) FillView();
  names.insert(names.begin(), U8(tr("No Additive Set")));
  list_->SetItems(names);
  for (int i = 1; i < list_->count(); ++i) {
    QString contents;
    for (const Ingredient& line : sets_[static_cast<std::size_t>(i - 1)].Rows())
      contents += QString("%1 %2 %\n").arg(Q(line.name), Q(Fixed(line.amount, kPercentDecimals)));
    list_->setItemData(i, contents.trimmed(), Qt::ToolTipRole);
  }
}

void AdditiveSetPanel::FillView() {
  std::vector<std::string> names;
  for (const AdditiveSet& set : sets_) names.push_back(set.SetName);
  const std::string viewed = viewed_->Text();
  viewed_->SetItems(names);
  viewed_->SetText(viewed);
  viewedDetail_->Show(Find(viewed));
}

void AdditiveSetPanel::Refresh() {
  const bool changed = IsChanged();
  sets_ = ListAdditiveSets(host_.session);
  FillLists();
  Choose(chosen_);
  if (!changed) onFile_ = chosen_;
}

void AdditiveSetPanel::RenameSet(const std::string& oldName, const std::string& newName) {
  if (EqualNoCase(chosen_, oldName)) chosen_ = newName;
  if (EqualNoCase(onFile_, oldName)) onFile_ = newName;
}

void AdditiveSetPanel::Show(const std::string& setName) {
  onFile_ = setName;
  Choose(setName);
}

void AdditiveSetPanel::Choose(const std::string& setName) {
  const AdditiveSet* set = Find(setName);
  chosen_ = set == nullptr ? std::string() : set->SetName;
  list_->setCurrentIndex(set == nullptr ? 0 : list_->findText(Q(chosen_)));
  detail_->Show(set);
}

std::string AdditiveSetPanel::Chosen() const {
  return chosen_;
}

bool AdditiveSetPanel::IsChanged() const {
  return !EqualNoCase(chosen_, onFile_);
}

std::vector<std::string> AdditiveSetPanel::Ingredients() const {
  const AdditiveSet* set = Find(chosen_);
  return set == nullptr ? std::vector<std::string>{} : NamesOf(set->Rows());
}

void AdditiveSetPanel::SetEditable(bool shown, bool editable) {
  list_->setEnabled(editable && !sets_.empty());
  view_->setVisible(!sets_.empty());
  create_->setVisible(shown);
}

void AdditiveSetPanel::ShowNew() {
  pages_->setCurrentIndex(2);
}

void AdditiveSetPanel::ShowChosen() {
  pages_->setCurrentIndex(0);
}

}  // namespace vellumark::desktop
