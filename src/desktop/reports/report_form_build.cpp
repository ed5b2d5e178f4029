#include <QHBoxLayout>
#include <QShortcut>
#include <QSplitter>
#include <array>

#include "core/base/text.h"
#include "core/cloud/cloud_files.h"
#include "core/cloud/cloud_reports.h"
#include "core/inventory/color_stock.h"
#include "core/jobs/designs.h"
#include "core/reports/batch_rows.h"
#include "core/reports/find_color.h"
#include "core/reports/report_settings.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/job_box.h"
#include "desktop/kit/layout_memory.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/reports/chart_panel.h"
#include "desktop/reports/open_row.h"
#include "desktop/reports/report_form.h"
#include "desktop/reports/report_source.h"

// How a report window is built from its definition.

namespace vellumark::desktop {
namespace {

constexpr int kSideWidth = 248;
constexpr int kGridWidth = 720;
constexpr int kChartWidth = 400;

// "Production - All Colors - this Database", short enough for a tab.
QString WindowTitle(const ReportDefinition& report) {
  return Q(report.group) + " - " + Q(report.caption).trimmed();
}

struct OptionText {
  const char* name;
  const char* text;                      ///< of a check box
  std::array<const char*, 3> choices{};  ///< of a list instead
};

constexpr std::array kOptionTexts{
    OptionText{"ShowBasics", QT_TRANSLATE_NOOP("ReportForm", "Basics / Additives")},
    OptionText{"ShowMixes", QT_TRANSLATE_NOOP("ReportForm", "Master Formulas")},
    OptionText{"ReorderOnly", QT_TRANSLATE_NOOP("ReportForm", "Show Colors to be Reordered Only")},
    OptionText{"PointsOnly", QT_TRANSLATE_NOOP("ReportForm", "Show Colors with Reorder Points Only")},
    OptionText{"InvOnly", QT_TRANSLATE_NOOP("ReportForm", "Show Only Colors In Inventory")},
    OptionText{"RecyclableOnly", QT_TRANSLATE_NOOP("ReportForm", "Show Only Recyclable Colors")},
    OptionText{"ModifiedOnly", QT_TRANSLATE_NOOP("ReportForm", "Only those modified within the dates")},
    OptionText{"NotesOnly", QT_TRANSLATE_NOOP("ReportForm", "Only those with notes")},
    OptionText{"CustomOnly", QT_TRANSLATE_NOOP("ReportForm", "Without PANTONE colors")},
    OptionText{"Additions", QT_TRANSLATE_NOOP("ReportForm", "Batch additions among the ingredients")},
    OptionText{"MixCost",
               nullptr,
               {QT_TRANSLATE_NOOP("ReportForm", "Unit Cost -  Master Formula Basic Cost"),
                QT_TRANSLATE_NOOP("ReportForm", "Unit Cost -  Master Formula Purchase Cost")}},
    OptionText{"OptConsignment",
               nullptr,
               {QT_TRANSLATE_NOOP("ReportForm", "All stock"), QT_TRANSLATE_NOOP("ReportForm", "Owned"),
                QT_TRANSLATE_NOOP("ReportForm", "On Consignment")}},
    OptionText{"DateQuery",
               nullptr,
               {QT_TRANSLATE_NOOP("ReportForm", "Date Entered"), QT_TRANSLATE_NOOP("ReportForm", "Date Completed")}},
    OptionText{
        "Type", nullptr, {QT_TRANSLATE_NOOP("ReportForm", "Producing"), QT_TRANSLATE_NOOP("ReportForm", "Consuming")}},
};

const OptionText* TextOf(const ReportOption& option) {
  const auto* found =
      std::ranges::find_if(kOptionTexts, [&](const OptionText& one) { return option.name == one.name; });
  return found == kOptionTexts.end() ? nullptr : found;
}

// A row that becomes too narrow takes the room elsewhere.
void KeepWhole(CommandButton& button) {
  button.ensurePolished();
  button.setMinimumWidth(button.sizeHint().width());
}

// Which users made Batches is asked of the lists of Batches.
bool ListsUsers(const ReportDefinition& report) {
  return report.key.starts_with("AllBatchesThisDB");
}

}  // namespace

ReportForm::ReportForm(WindowList& windowList, const ReportDefinition& definition, FileChooser choose)
    : Window(windowList, Q(definition.window), WindowTitle(definition)), definition_(definition) {
  setWindowIcon(Icon("Report"));
  source_ = std::make_shared<ReportSource>(ReportSource::Editing{
      [this](int row, int column) {
        const auto cell = CellAt(row, column);
        return cell && definition_.edits && cell->report.columns[cell->column].key != "Recycle" &&
               cell->report.columns[cell->column].format != Format::Notes &&
               RequireEditable(session, *cell).has_value();
      },
      [this](int row, int column, const std::string& typed) { return TakeEdit(row, column, typed); }});
  Form form(*this);
  BuildSubject(form);
  BuildOptions(form);
  auto* head = new QWidget(this);
  auto* line = new QHBoxLayout(head);
  line->setContentsMargins(0, 0, 0, 0);
  line->addWidget(title_ = form.Label("lblTitle"), 1);
  line->addWidget(count_ = form.Hint({}, "lblRecordCount"));
  title_->setWordWrap(true);
  form.Wide(head);
  BuildMiddle(form, std::move(choose));
  CommandButton* fetch = nullptr;
  form.ButtonsWithoutDefault({form.Button("cmdClose", tr("Close")), form.Button("cmdClear", tr("C&lear")),
                              fetch = form.Button("cmdCloudGet", tr("&Get from Cloud")),
                              save_ = form.Button("cmdSaveReport", tr("Sa&ve Report")),
                              chart_ = form.Button("cmdChart", tr("C&hart"), Qt::Key_F6),
                              upload_ = form.Button("cmdCloudReportUpload", tr("To Clo&ud")),
                              export_ = form.Button("cmdExport", tr("&Export")),
                              print_ = form.Button("cmdPrint", tr("&Print"))});
  SetDefaultButton(find_);
  fetch->setVisible(FetchTaskOf(definition_) && windows.Knows("Cloud_GetPutData_Form"));
  try {
    upload_->setVisible(windows.Knows("CloudReportUploadForm") && CloudReady(session));
  } catch (const Failure& failure) {
    upload_->setToolTip(Q(failure.subject) + ": " + Q(failure.cause));
  }
  refresh_.setSingleShot(true);
  refresh_.setInterval(250);
  connect(&refresh_, &QTimer::timeout, this, &ReportForm::RefreshNow);
  ShowColumns();
}

ReportForm::~ReportForm() = default;

void ReportForm::BuildSubject(Form& form) {
  QString label = tr("D&ates");
  std::vector<QWidget*> line;
  if (definition_.subject == ReportSubject::Formula || definition_.subject == ReportSubject::Color) {
    label = tr("Color &Name");
    const bool formula = definition_.subject == ReportSubject::Formula;
    const NameSource names{[this, formula](std::string_view typed) {
                             if (!formula) return CompleteColorName(session, typed);
                             const auto found = CompleteReportColor(session, typed, 1);
                             return found.empty() ? std::string() : found.front();
                           },
                           [this, formula](std::string_view typed, std::size_t limit) {
                             return formula ? CompleteReportColor(session, typed, limit)
                                            : ColorNamesFrom(session, typed, limit);
                           }};
    auto* name = form.Name("cmbColorName", names);
    name->setAccessibleName(tr("Color Name"));
    connect(name, &NameBox::Picked, this, [this] { cmdFind_Click(); });
    subject_ = name;
  } else if (definition_.subject == ReportSubject::Job) {
    label = tr("Job &Number");
    subject_ = form.Text("cmbJobNumber", TextRule::Upper(kJobNumberLength));
    subject_->setAccessibleName(tr("Job Number"));
  } else if (definition_.subject == ReportSubject::Design) {
    label = tr("Desig&n ID");
    subject_ = form.Text("cmbDesignID", TextRule::Upper(kDesignIDLength));
    subject_->setAccessibleName(tr("Design ID"));
  }
  if (subject_ != nullptr) {
    subject_->DoNotTrack();
    subject_->setMinimumWidth(120);
    subject_->setMaximumWidth(280);
    connect(subject_, &QLineEdit::textEdited, this, [this] { kind_.reset(); });
    line.push_back(subject_);
  }
  if (!definition_.dateRangeKey.empty()) AddDates(line, form);
  if (line.empty()) label.clear();
  if (ListsUsers(definition_)) {
    user_ = form.Combo("cmbUsers", {tr("All Users")});
    for (const std::string& name : BatchUsers(session)) user_->addItem(Q(name));
    user_->setAccessibleName(tr("Username"));
    user_->DoNotTrack();
    user_->OnChosen([this](int) { cmdFind_Click(); });
    line.push_back(user_);
  }
  find_ = form.Button("cmdFind", tr("&Find"));
  find_->setToolTip(tr("Builds the report (F5)"));
  auto* build = new QShortcut(Qt::Key_F5, this);
  connect(build, &QShortcut::activated, find_, &QPushButton::click);
  line.push_back(find_);
  auto* row = new QWidget(this);
  auto* place = new QHBoxLayout(row);
  place->setContentsMargins(0, 0, 0, 0);
  place->setSpacing(space::kUnit);
  for (QWidget* widget : line) place->addWidget(widget);
  place->addStretch();
  if (label.isEmpty()) {
    form.Wide(row);
  } else {
    row->setFocusProxy(line.front());
    form.Row(label, row);
  }
}

void ReportForm::AddDates(std::vector<QWidget*>& line, Form& form) {
  range_ = form.Combo("cmbDateRange");
  keepRange_ = form.Link("cmdKeepRange", tr("Keep these dates"));
  ListRanges();
  range_->setAccessibleName(tr("Range of dates"));
  range_->DoNotTrack();
  line.push_back(range_);
  const auto date = [&](const char* name, const QString& caption) {
    DateField* field = form.Date(name);
    field->setAccessibleName(caption);
    field->DoNotTrack();
    line.push_back(form.Hint(caption));
    line.push_back(field);
    connect(field, &QDateEdit::dateChanged, this, [this] {
      if (quiet_) return;
      range_->setCurrentIndex(kCustomRange);
      Changed();
    });
    return field;
  };
  from_ = date("CalFrom", tr("From"));
  to_ = date("CalTo", tr("To"));
  line.push_back(keepRange_);
  ChooseRange(ReadDateRange(session, definition_));
  range_->OnChosen([this](int place) {
    if (place == kCustomRange) {
      from_->TakeFocus();
      return Changed();
    }
    ChooseRange(place);
    Changed();
    if (!HasSubject() || !Subject().empty()) cmdFind_Click();
  });
}

void ReportForm::BuildOptions(Form& form) {
  if (definition_.options.empty()) return;
  auto* row = new QWidget(this);
  auto* place = new QHBoxLayout(row);
  place->setContentsMargins(0, 0, 0, 0);
  place->setSpacing(space::kGap);
  for (const ReportOption& option : definition_.options) {
    const OptionText* text = TextOf(option);
    OptionField field{&option};
    const int value = ReadReportOption(session, definition_, option);
    const auto taken = [this, &option](int chosen) {
      SaveReportOption(session, definition_, option, chosen);
      if (report_) cmdFind_Click();
    };
    if (text != nullptr && text->text == nullptr) {
      field.combo = form.Combo("opt" + Q(option.name));
      for (int i = 0; i < option.choices; ++i) field.combo->addItem(tr(text->choices.at(static_cast<std::size_t>(i))));
      const QString meaning =
          option.name == "MixCost" ? tr("Master Formula Pricing (Unlotted Inventory)") : Q(option.meaning);
      field.combo->setAccessibleName(meaning);
      field.combo->setToolTip(meaning);
      field.combo->setCurrentIndex(value);
      field.combo->OnChosen(taken);
      field.combo->DoNotTrack();
      place->addWidget(field.combo);
    } else {
      field.check = form.Check("chk" + Q(option.name), text == nullptr ? Q(option.meaning) : tr(text->text));
      field.check->setChecked(value == 1);
      field.check->DoNotTrack();
      connect(field.check, &QCheckBox::clicked, this, [taken](bool on) { taken(on ? 1 : 0); });
      place->addWidget(field.check);
    }
    options_.push_back(field);
  }
  place->addStretch();
  form.Wide(row);
}

void ReportForm::BuildMiddle(Form& form, FileChooser choose) {
  QSplitter* sides = form.Sides("Sides");
  auto* side = new QWidget(sides);
  auto* rows = new QWidget(sides);
  side->setContentsMargins(0, 0, space::kUnit, 0);
  rows->setContentsMargins(space::kUnit, 0, 0, 0);
  BuildGrid(Form(*this, *rows));
  BuildSide(Form(*this, *side));
  chartPanel_ = new ChartPanel(*this, Q(definition_.window), std::move(choose));
  sides->addWidget(chartPanel_);
  chartPanel_->setVisible(chartPanel_->WasOpen());
  sides->setStretchFactor(0, 0);
  sides->setStretchFactor(1, 1);
  sides->setStretchFactor(2, 0);
  sides->setSizes({kSideWidth, kGridWidth, kChartWidth});
}

void ReportForm::BuildGrid(Form form) {
  grid_ = form.Table("fg");
  grid_->setProperty(kLayoutInSettings, true);
  filter_ = grid_->ShowFilter(tr("Filter"));
  grid_->AllowManyRows();
  grid_->setAccessibleName(windowTitle());
  grid_->SetEmptyText(tr("Press Find to build the report"));
  form.Wide(grid_, 1);
  connect(grid_, &Grid::RowActivated, this, [this](int row) {
    if (definition_.edits)
      OpenRow(windows, report_->targets.at(static_cast<std::size_t>(row)));
    else
      OpenOf(static_cast<std::size_t>(row));
  });
  connect(grid_, &Grid::CellClicked, this, &ReportForm::OpenClicked);
  connect(grid_, &Grid::ColumnsChanged, this, [this] {
    if (!quiet_) ListColumns();
  });
  connect(&grid_->Model(), &QAbstractItemModel::modelReset, this, [this] { ShowTotals(); });
  connect(&grid_->Model(), &QAbstractItemModel::layoutChanged, this, [this] { ShowTotals(); });
  auto* edit = new QShortcut(Qt::Key_F2, grid_, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(edit, &QShortcut::activated, this, &ReportForm::ToggleOrTell);
}

void ReportForm::BuildSide(Form form) {
  if (definition_.scope == ReportScope::Chosen) {
    form.Wide(form.Hint(tr("Databases")));
    databases_ = form.CheckList("lstDatabases");
    QStringList names;
    for (const std::string& name : session.databaseList) names += Q(name);
    databases_->SetItems(names, true);
    databases_->setAccessibleName(tr("Databases"));
    databases_->DoNotTrack();
    connect(databases_, &QListWidget::itemChanged, this, [this] { Changed(); });
    // As high as they are, up to a few: the columns need the height.
    constexpr int kMostShown = 4;
    databases_->setMaximumHeight(std::clamp<int>(names.size(), 2, kMostShown) * space::kRowHeight + space::kUnit);
    form.Wide(databases_, 1);
  }
  QLabel* hint = form.Hint(tr("Select/deselect columns for this report"));
  hint->setWordWrap(true);
  form.Wide(hint);
  columns_ = form.CheckList("lstColumns");
  columns_->setAccessibleName(tr("Columns of this report"));
  columns_->DoNotTrack();
  columns_->setMinimumHeight(128);
  form.Wide(columns_, 2);
  auto* all = new QWidget(columns_->parentWidget());
  auto* line = new QHBoxLayout(all);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(space::kUnit);
  for (CommandButton* button :
       {form.Button("chkSelectAllColors", tr("Select All")), form.Button("chkDeselectAllColors", tr("Deselect All"))}) {
    KeepWhole(*button);
    line->addWidget(button);
  }
  form.Wide(all);
  connect(columns_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
    if (quiet_) return;
    const int place = columns_->row(item);
    quiet_ = true;
    grid_->ShowColumn(place + 1, columns_->IsChecked(place));
    quiet_ = false;
    ShowTotals();
  });
}

}  // namespace vellumark::desktop
