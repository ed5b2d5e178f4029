#include "desktop/tools/color_selection.h"

#include <unordered_set>

#include "core/base/text.h"
#include "core/colors/color_tables.h"
#include "core/colors/formula_tools.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/swatch_view.h"
#include "desktop/kit/text.h"
#include "desktop/tools/checked_list.h"

namespace vellumark::desktop {
namespace {

constexpr int kNameWidth = 260;

}  // namespace

class ColorSelection::Source : public CheckedSource, public RowTargets {
 public:
  explicit Source(const Session& session) : session_(session) {}

  void Take(ColorKind kind, const std::string& database) {
    std::unordered_set<std::string> chosen;
    if (kind == kind_ && EqualNoCase(database, database_))
      for (const int row : CheckedRows()) chosen.insert(Upper(NameOf(row)));
    kind_ = kind;
    database_ = database;
    colors_ = ListColors(session_, kind, database);
    ResetChecks(colors_.size());
    if (chosen.empty()) return;
    for (int row = 0; row < Rows(); ++row) SetChecked(row, chosen.contains(Upper(NameOf(row))));
  }
  const std::string& NameOf(int row) const { return colors_.at(static_cast<std::size_t>(row)).Color_Name; }

  int Rows() const override { return static_cast<int>(colors_.size()); }
  std::string Text(int row, int column) const override { return column == 0 ? std::string() : NameOf(row); }
  std::optional<QColor> Swatch(int row, int column) const override {
    if (column == 0) return std::nullopt;
    return ColorOf(InkOf(session_, kind_, NameOf(row), database_));
  }
  std::vector<RowTarget> Targets(int row) const override {
    return {ColorTarget(session_, kind_, NameOf(row), database_)};
  }

 private:
  const Session& session_;
  ColorKind kind_ = ColorKind::Mix;
  std::string database_;
  std::vector<ListedColor> colors_;
};

ColorSelection::ColorSelection(FormHost& host, Form form, const QString& listName)
    : QObject(&host.Self()), host_(host), source_(std::make_shared<Source>(host.session)) {
  Grid* grid = form.Table(listName);
  list_ = new CheckedList(*grid, source_, {GridColumn::Text(tr("Color"), kNameWidth)});
  grid->ShowFilter(tr("Filter"));
  grid->SetEmptyText(tr("No colors"));
  form.Wide(grid, 1);
  CommandButton* all = form.Button("chkSelectAllColors", tr("Select &All"), [this] { list_->CheckShown(true); });
  all->setToolTip(tr("All colors that the filter shows"));
  CommandButton* none = form.Button("chkDeselectAllColors", tr("Desele&ct All"), [this] { list_->UncheckAll(); });
  count_ = form.Hint({}, "lblSelected");
  auto* line = new QWidget;
  auto* layout = new QHBoxLayout(line);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(all);
  layout->addWidget(none);
  layout->addStretch();
  form.Wide(line);
  form.Wide(count_);
  connect(list_, &CheckedList::CheckedChanged, this, [this] {
    ShowCount();
    Q_EMIT ChosenChanged();
  });
  connect(grid, &Grid::CurrentRowChanged, this, &ColorSelection::CurrentChanged);
  ShowCount();
}

ColorSelection::~ColorSelection() = default;

void ColorSelection::Load(ColorKind kind, const std::string& database) {
  source_->Take(kind, database);
  list_->Refresh();
}

void ColorSelection::ChooseNone() {
  list_->UncheckAll();
}

std::vector<std::string> ColorSelection::Chosen() const {
  std::vector<std::string> names;
  for (const int row : source_->CheckedRows()) names.push_back(source_->NameOf(row));
  return names;
}

std::string ColorSelection::Current() const {
  const int row = list_->List().CurrentRow();
  return row < 0 || row >= source_->Rows() ? std::string() : source_->NameOf(row);
}

void ColorSelection::TakeFocus() {
  list_->List().findChild<QLineEdit*>(list_->List().objectName() + "_Filter")->setFocus(Qt::OtherFocusReason);
}

void ColorSelection::ShowCount() {
  count_->setText(tr("%1 Colors selected").arg(source_->CheckedRows().size()));
}

}  // namespace vellumark::desktop
