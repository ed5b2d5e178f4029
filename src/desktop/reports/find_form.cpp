#include "desktop/reports/find_form.h"

#include <QApplication>
#include <QLocale>
#include <QScrollArea>
#include <QSplitter>
#include <algorithm>

#include "core/base/text.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/layout_memory.h"
#include "desktop/kit/look.h"
#include "desktop/kit/print_sheet.h"
#include "desktop/kit/record_source.h"
#include "desktop/kit/row_menu.h"
#include "desktop/kit/text.h"
#include "desktop/reports/open_row.h"
#include "desktop/reports/report_source.h"

namespace vellumark::desktop {
namespace {

constexpr int kFieldsWidth = 480;
constexpr int kComparisonWidth = 128;
constexpr int kNameWidth = 192;
constexpr int kColumnWidth = 136;
constexpr int kLeastValueWidth = 120;
constexpr int kMostValueWidth = 200;

// Tab goes on as Enter does, and not from day to month: in an empty date it would never leave.
class WholeDate : public DateField {
 public:
  using DateField::DateField;

 protected:
  bool focusNextPrevChild(bool next) override {
    return QWidget::focusNextPrevChild(next);  // NOLINT(bugprone-parent-virtual-call): past the parent's parts
  }
};

// The names of the windows' own controls: "BatchField0", "cmbBatchComp0".
QString WordOf(FindSubject subject) {
  switch (subject) {
    case FindSubject::Basic:
      return "Basic";
    case FindSubject::Mix:
      return "Mix";
    case FindSubject::Batch:
      return "Batch";
    case FindSubject::Job:
      return "Job";
    default:
      return "Design";
  }
}

QString TitleOf(FindSubject subject) {
  switch (subject) {
    case FindSubject::Basic:
      return FindForm::tr("Find Basic / Additive");
    case FindSubject::Mix:
      return FindForm::tr("Find Master Formula");
    case FindSubject::Batch:
      return FindForm::tr("Find Batch");
    case FindSubject::Job:
      return FindForm::tr("Find Job");
    default:
      return FindForm::tr("Find Design");
  }
}

}  // namespace

// What was found, in memory.
class FindForm::Source : public GridSource, public RowTargets {
 public:
  void Show(const ListTable& table) {
    table_ = table;
    cells_.clear();
    targets_.clear();
    table_.read([&](const TableRow& row) {
      for (std::size_t i = 0; i < table_.columns.size(); ++i) cells_.push_back(row.Cell(i));
      targets_.push_back(row.Target());
      return true;
    });
  }
  void Clear() {
    cells_.clear();
    targets_.clear();
  }
  const RowTarget& Target(int row) const { return targets_.at(static_cast<std::size_t>(row)); }
  const TableValue& At(std::size_t row, std::size_t column) const {
    return cells_.at(row * table_.columns.size() + column);
  }
  /// The rows that are shown, in their order.
  ListTable Shown(const std::vector<int>& rows, const std::vector<int>& columns) const {
    class Row final : public TableRow {
     public:
      Row(const Source& source, std::size_t row, const std::vector<int>& columns)
          : source_(source), row_(row), columns_(columns) {}
      TableValue Cell(std::size_t column) const override {
        return source_.At(row_, static_cast<std::size_t>(columns_[column]));
      }

     private:
      const Source& source_;
      std::size_t row_;
      const std::vector<int>& columns_;
    };
    ListTable table;
    for (const int column : columns) table.columns.push_back(table_.columns[static_cast<std::size_t>(column)]);
    table.read = [this, rows, columns](const TableSink& take) {
      for (const int row : rows)
        if (!take(Row(*this, static_cast<std::size_t>(row), columns))) return;
    };
    return table;
  }

  std::vector<RowTarget> Targets(int row) const override { return {Target(row)}; }
  int Rows() const override { return static_cast<int>(targets_.size()); }
  std::string Text(int row, int column) const override {
    const auto place = static_cast<std::size_t>(column);
    return CellTextInWindow(table_.columns[place], At(static_cast<std::size_t>(row), place));
  }
  double Number(int row, int column) const override {
    return CellNumber(At(static_cast<std::size_t>(row), static_cast<std::size_t>(column)));
  }

 private:
  ListTable table_;
  std::vector<TableValue> cells_;
  std::vector<RowTarget> targets_;
};

FindForm::FindForm(WindowList& windowList, const QString& name, FindSubject subject)
    : Window(windowList, name, TitleOf(subject)), subject_(subject), source_(std::make_shared<Source>()) {
  setWindowIcon(Icon("Find"));
  Form form(*this);
  QSplitter* sides = form.Sides("Sides");
  auto* left = new QWidget(sides);
  auto* right = new QWidget(sides);
  left->setContentsMargins(0, 0, space::kUnit, 0);
  right->setContentsMargins(space::kUnit, 0, 0, 0);
  BuildFields(*left);
  Form found(*this, *right);
  found.Wide(count_ = found.Label("lblRecordCount", tr("0 Records Found")));
  grid_ = found.Table("fg");
  grid_->setProperty(kLayoutInSettings, true);
  grid_->ShowFilter(tr("Filter"));
  grid_->AllowManyRows();
  grid_->setAccessibleName(tr("Records found"));
  grid_->SetEmptyText(tr("Fill in fields and press Find; with none filled in everything is found"));
  found.Wide(grid_, 1);
  sides->setStretchFactor(0, 0);
  sides->setStretchFactor(1, 1);
  sides->setSizes({kFieldsWidth, 2 * kFieldsWidth});
  CommandButton* find = form.Button("cmdFind", tr("&Find"), Qt::Key_F5);
  form.Buttons({find, form.Button("cmdClear", tr("C&lear")), print_ = form.Button("cmdPrint", tr("&Print")),
                form.Button("cmdClose", tr("Close"))});
  connect(grid_, &Grid::RowActivated, this, [this](int row) { OpenRow(windows, source_->Target(row)); });
  connect(grid_, &Grid::CellClicked, this, [this](int row, int) {
    if (QApplication::keyboardModifiers() == Qt::NoModifier) OpenRow(windows, source_->Target(row));
  });
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now != nullptr && area_->isAncestorOf(now)) area_->ensureWidgetVisible(now);
  });
}

FindForm::~FindForm() = default;

void FindForm::BuildFields(QWidget& part) {
  Form form(*this, part);
  area_ = new QScrollArea(&part);
  form.Wide(area_, 1);
  area_->setWidgetResizable(true);
  area_->setFrameShape(QFrame::NoFrame);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area_->setFocusPolicy(Qt::NoFocus);
  auto* inner = new QWidget;
  Form fields(*this, *inner);
  int number = 0;
  for (const vellumark::FindField& field : FindFields(session, subject_)) BuildRow(fields, number++, field);
  area_->setWidget(inner);
  area_->setMinimumWidth(kFieldsWidth - kColumnWidth);
  operator_ = form.Combo(QString("cmb%1Operator").arg(WordOf(subject_)),
                         {tr("Satisfy all requirements (Logical AND)"), tr("Satisfy any requirement (logical OR)")});
  form.Row(tr("Search &Type"), operator_);
  operator_->DoNotTrack();
  if (subject_ != FindSubject::Design) {
    QStringList names{Q(session.CurrentDatabase)};
    for (const std::string& name : session.databaseList)
      if (!EqualNoCase(name, session.CurrentDatabase)) names += Q(name);
    names += tr("All Databases");
    databases_ = form.Combo(QString("cmb%1Databases").arg(WordOf(subject_)), names);
    form.Row(tr("Search &Where"), databases_);
    databases_->DoNotTrack();
  }
}

void FindForm::BuildRow(Form& form, int number, const vellumark::FindField& field) {
  const QString word = WordOf(subject_);
  Row row{field};
  QStringList comparisons;
  for (const std::string_view one : FindComparisons(field.kind)) comparisons += Q(one);
  row.comparison = form.Combo(QString("cmb%1Comp%2").arg(word).arg(number), comparisons);
  row.comparison->setFixedWidth(kComparisonWidth);
  row.comparison->setAccessibleName(tr("Comparison of %1").arg(Q(field.caption)));
  row.comparison->DoNotTrack();
  const QString name = QString("%1Field%2").arg(word).arg(number);
  QWidget* control = nullptr;
  if (field.kind == FindKind::Flag) {
    auto* flag = form.Combo(name, {"", tr("Yes"), tr("No")});
    row.value = flag;
    control = flag;
    row.comparison->setVisible(false);
  } else if (field.kind == FindKind::Date) {
    auto* date = form.Add(new WholeDate(name));
    row.value = date;
    control = date;
  } else {
    auto* text =
        form.Text(name, field.special == vellumark::FindField::Special::ColorName ? TextRule::Upper(session.NameLength)
                                                                                  : TextRule::Any());
    row.value = text;
    control = text;
  }
  row.value->DoNotTrack();
  row.value->Means(field.caption);
  control->setAccessibleName(Q(field.caption));
  control->setMinimumWidth(kLeastValueWidth);
  control->setMaximumWidth(kMostValueWidth);
  form.Row(Q(field.caption), {control, row.comparison});
  rows_.push_back(std::move(row));
}

std::string FindForm::ValueOf(const Row& row) const {
  if (const auto* date = dynamic_cast<const DateField*>(row.value)) return date->Date() ? date->Date()->DateText() : "";
  if (const auto* flag = dynamic_cast<const ComboField*>(row.value))
    return flag->currentIndex() == 1 ? "yes" : flag->currentIndex() == 2 ? "no" : "";
  return dynamic_cast<const TextField&>(*row.value).Text();
}

FindRequest FindForm::Request() const {
  FindRequest request{.subject = subject_, .any = operator_->currentIndex() == 1};
  for (const Row& row : rows_)
    request.terms.push_back({row.field.caption, row.comparison->Text(), ValueOf(row), row.field.columns});
  if (databases_ != nullptr)
    request.databases = {databases_->currentIndex() + 1 == databases_->count() ? "all" : databases_->Text()};
  return request;
}

void FindForm::cmdFind_Click() {
  Empty();
  Result<FindAnswer> answer = [&] {
    const auto wait = Wait(WaitKind::WaitingForm, tr("Searching ..."));
    return Find(session, Request());
  }();
  if (Accepted(answer)) Show(*answer);
}

void FindForm::Show(const FindAnswer& answer) {
  source_->Show(answer.table);
  complete_ = answer.complete;
  std::vector<GridColumn> columns;
  for (const TableColumn& column : answer.table.columns) {
    GridColumn shown = ShownColumn(column, columns.empty());
    shown.width = columns.empty() ? kNameWidth : kColumnWidth;
    columns.push_back(std::move(shown));
  }
  const GridSort sort = grid_->Sort();
  grid_->SetColumns(std::move(columns));
  grid_->SetSource(source_);
  grid_->SetSort(sort);
  count_->setText(tr("%1 Records Found").arg(QLocale().toString(static_cast<qlonglong>(answer.count))));
  Changed();
  if (!answer.complete) session.prompt.Tell(answer.warningTitle, answer.warning);
}

void FindForm::Empty() {
  source_->Clear();
  grid_->Refresh();
  count_->setText(tr("0 Records Found"));
  Changed();
}

void FindForm::cmdClear_Click() {
  for (const Row& row : rows_) {
    if (auto* date = dynamic_cast<DateField*>(row.value)) date->SetDate({});
    if (auto* flag = dynamic_cast<ComboField*>(row.value)) flag->setCurrentIndex(0);
    if (auto* text = dynamic_cast<TextField*>(row.value)) text->SetText("");
  }
  Empty();
  rows_.front().value->TakeFocus();
}

void FindForm::UpdateEnabled() {
  print_->setEnabled(source_->Rows() > 0 && CanPrint(windows));
}

void FindForm::cmdPrint_Click() {
  Sheet sheet = Sheet::Of(U8(windowTitle()), source_->Shown(grid_->ShownRows(), grid_->ShownColumns()));
  sheet.incomplete = !complete_;
  PrintSheet(windows, sheet);
}

}  // namespace vellumark::desktop
