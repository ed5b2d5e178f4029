#include "desktop/reports/print_box_form.h"

#include <fmt/format.h>

#include <QFontDatabase>
#include <QHBoxLayout>
#include <array>

#include "core/base/number.h"
#include "desktop/datafile/file_choice.h"
#include "desktop/kit/look.h"
#include "desktop/kit/text.h"
#include "desktop/reports/page_preview.h"
#include "paper/print_control.h"
#include "paper/print_options.h"

namespace vellumark::desktop {
namespace {

constexpr int kMostCopies = 999;
constexpr std::array kPapers{QPageSize::A4, QPageSize::Letter, QPageSize::A3, QPageSize::Legal};
constexpr std::array kPercents{100, 90, 80, 70, 60};
constexpr std::array kDuplex{QPrinter::DuplexNone, QPrinter::DuplexLongSide, QPrinter::DuplexShortSide};
constexpr std::array kZooms{PagePreview::kWholePage, PagePreview::kPageWidth, 0.5, 0.75, 1.0, 1.5, 2.0};
constexpr const char* kPaperKey = "print/paper";
constexpr const char* kPercentKey = "print/percent";

}  // namespace

PrintBoxForm::PrintBoxForm(WindowList& windowList, QWidget* owner, PrintDevices devices)
    : Dialog(windowList, owner, "PrintBoxForm", tr("Print Control")),
      devices_(std::move(devices)),
      options_(paper::ReadPrintControl(session)) {
  Form form(*this);
  auto* middle = new QWidget(this);
  auto* sides = new QHBoxLayout(middle);
  sides->setContentsMargins(0, 0, 0, 0);
  sides->setSpacing(space::kGroup);
  auto* choices = new QWidget(middle);
  auto* pages = new QWidget(middle);
  sides->addWidget(choices, 2);
  sides->addWidget(pages, 3);
  TabSet tabs = Form(*this, *choices).Tabs("TabPrint");
  BuildPrinter(tabs.Page(tr("Printer"), "TabPrinter"));
  BuildPage(tabs.Page(tr("Page"), "TabPage"));
  tabs_ = tabs;
  BuildPreview(Form(*this, *pages));
  form.Wide(middle, 1);
  form.Buttons({print_ = form.Button("cmdPrint", tr("&Print")), form.Button("cmdPDF", tr("Save as P&DF")),
                form.Button("cmdCancel", tr("Cancel"))});
  resize(1040, 640);
}

void PrintBoxForm::BuildPrinter(Form form) {
  form.Row(tr("P&rinter"), printer_ = form.Combo("cmbPrinter"));
  ShowPrinters(*printer_, devices_.printers(), paper::ReportPrinter(session));
  printer_->OnChosen([this](int) { StoreSettings(session, {setting::ReportPrinter.To(ChosenDevice(*printer_))}); });
  form.Row(tr("&Copies"), copies_ = form.Number("txtCopies", 0, tr("1 to 999"), 5));
  copies_->SetText("1");
  form.Row(tr("P&ages"), {from_ = form.Number("txtFrom", 0, tr("The first page; empty: all"), 5), form.Hint(tr("to")),
                          to_ = form.Number("txtTo", 0, tr("The last page; empty: to the end"), 5)});
  to_->setAccessibleName(tr("Last page"));
  form.Row(tr("S&ides"), duplex_ = form.Combo("cmbDuplex", {tr("One side"), tr("Turned at the long edge"),
                                                            tr("Turned at the short edge")}));
  for (Field* field : std::initializer_list<Field*>{printer_, copies_, from_, to_, duplex_}) field->DoNotTrack();
  form.Stretch();
}

void PrintBoxForm::BuildPage(Form form) {
  orientation_ = form.Radio("PControl_Orientation",
                            {{"optPortrait", tr("Portrait")}, {"optLandscape", tr("Landscape")}}, Qt::Horizontal);
  form.Row(tr("Orientation"), orientation_);
  orientation_->Choose(options_.landscape ? 1 : 0);
  connect(orientation_, &RadioField::ChosenChanged, this, [this](int chosen) {
    options_.landscape = chosen == 1;
    StoreSettings(session, {setting::PControl_Orientation.To(options_.landscape)});
    Refresh();
  });
  QStringList papers;
  for (const QPageSize::PageSizeId size : kPapers) papers += QPageSize::name(size);
  form.Row(tr("Paper &size"), paper_ = form.Combo("cmbPaper", papers));
  const auto recalled = [](const char* key, int unset) {
    const QVariant kept = memory::Recall(key);
    return kept.isValid() ? kept.toInt() : unset;
  };
  const auto papersPlace = std::ranges::find(kPapers, options_.paper) - kPapers.begin();
  paper_->setCurrentIndex(recalled(kPaperKey, static_cast<int>(papersPlace)));
  paper_->OnChosen([this](int index) {
    memory::Keep(kPaperKey, index);
    Refresh();
  });
  form.Row(tr("Change &Font"), font_ = form.Combo("cmbFont", QFontDatabase::families()));
  if (font_->findText(options_.family) < 0) font_->insertItem(0, options_.family);
  font_->setCurrentText(options_.family);
  font_->OnChosen([this](int) {
    StoreSettings(session, {setting::PrinterFont.To(font_->Text())});
    Refresh();
  });
  QStringList percents;
  for (const int percent : kPercents) percents += tr("%1 %").arg(percent);
  form.Row(tr("Text si&ze"), percent_ = form.Combo("cmbPercent", percents));
  percent_->setCurrentIndex(recalled(kPercentKey, 0));
  percent_->OnChosen([this](int index) {
    memory::Keep(kPercentKey, index);
    Refresh();
  });
  const std::array<std::pair<const char*, QString>, 5> texts{
      std::pair{"chkHeadings", tr("Column &Headings")},
      {"chkData", tr("R&eport Data")},
      {"chkTotals", tr("&Totals")},
      {"chkLines", tr("Print Formatting &Lines")},
      {"chkFitToPage", tr("Fit Report on a Sin&gle Page Width")}};
  for (std::size_t i = 0; i < texts.size(); ++i) {
    CheckField* check = form.Check(texts[i].first, texts[i].second);
    const paper::PrintSwitch& choice = paper::kPrintSwitches[i];
    check->setChecked(options_.*choice.field);
    form.Row(check);
    checks_.emplace_back(check, choice.field);
    connect(check, &QCheckBox::toggled, this, [this, &choice](bool on) {
      StoreSettings(session, {choice.setting.To(on)});
      Refresh();
    });
    check->DoNotTrack();
  }
  for (Field* field : std::initializer_list<Field*>{orientation_, paper_, font_, percent_}) field->DoNotTrack();
  form.Stretch();
}

void PrintBoxForm::BuildItems(Form form) {
  CheckListField* list = form.CheckList("lstItems");
  list->setAccessibleName(tr("What is printed"));
  list->DoNotTrack();
  QStringList names;
  for (const std::string& name : items_.names) names += Q(name);
  list->SetItems(names);
  for (int i = 0; i < list->count(); ++i) list->SetChecked(i, items_.isOn(static_cast<std::size_t>(i)));
  form.Wide(list, 1);
  connect(list, &QListWidget::itemChanged, this, [this, list](QListWidgetItem* item) {
    const int place = list->row(item);
    items_.set(static_cast<std::size_t>(place), list->IsChecked(place));
    sheet_ = items_.make();
    Refresh();
  });
}

void PrintBoxForm::BuildPreview(Form form) {
  back_ = form.Button("cmdPreviousPage", tr("Previous"), Qt::Key_PageUp);
  forth_ = form.Button("cmdNextPage", tr("Next"), Qt::Key_PageDown);
  place_ = form.Label("lblPlace");
  place_->setMinimumWidth(fontMetrics().horizontalAdvance(tr("Page %1 of %2").arg(9999).arg(9999)));
  ComboField* zoom = form.Combo("cmbZoom", {tr("Whole page"), tr("Page width"), "50 %", "75 %", "100 %", "150 %", "200 %"});
  zoom->setAccessibleName(tr("Zoom"));
  zoom->DoNotTrack();
  form.Row({back_, forth_, place_, zoom});
  form.Wide(preview_ = new PagePreview("Preview"), 1);
  form.Wide(hint_ = form.Hint({}, "lblHint"));
  hint_->setWordWrap(true);
  zoom->OnChosen([this](int index) { preview_->SetZoom(kZooms.at(static_cast<std::size_t>(index))); });
  connect(preview_, &PagePreview::Turned, this, &PrintBoxForm::ShowPlace);
}

void PrintBoxForm::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Sheet")) sheet_ = arguments.Get<Sheet>("Sheet");
  if (arguments.Has("Items")) {
    items_ = arguments.Get<PrintItems>("Items");
    BuildItems(tabs_->Page(tr("Contents"), "TabContents"));
  }
  setWindowTitle(tr("Print Control - %1").arg(Q(sheet_.title)));
  ready_ = true;
  Refresh();
}

void PrintBoxForm::UpdateEnabled() {
  print_->setEnabled(!ChosenDevice(*printer_).empty());
  for (QWidget* control : std::initializer_list<QWidget*>{copies_, duplex_}) control->setEnabled(printer_->count() > 0);
}

paper::PageOptions PrintBoxForm::Chosen() const {
  paper::PageOptions options = options_;
  options.landscape = orientation_->Chosen() == 1;
  options.paper =
      kPapers.at(static_cast<std::size_t>(std::clamp(paper_->currentIndex(), 0, static_cast<int>(kPapers.size()) - 1)));
  options.family = font_->currentText();
  options.fontPercent = kPercents.at(
      static_cast<std::size_t>(std::clamp(percent_->currentIndex(), 0, static_cast<int>(kPercents.size()) - 1)));
  for (const auto& [check, field] : checks_) options.*field = check->isChecked();
  return options;
}

void PrintBoxForm::Refresh() {
  if (!ready_) return;
  paper::SheetLayout layout(sheet_, Chosen(), session.progress);
  std::vector<paper::Page> pages;
  layout.SetPages(
      [&](paper::Page&& page) {
        pages.push_back(std::move(page));
        return true;
      },
      session.progress);
  const paper::PageFit& fit = layout.Fitting();
  QString hint;
  if (layout.Options().fitToPage && fit.size < static_cast<int>(paper::kBodySize * layout.Options().fontPercent / 100))
    hint = tr("The text gets the size %1 so that all columns stand beside each other.").arg(fit.size);
  if (layout.BetterTurned())
    hint += (hint.isEmpty() ? "" : " ") +
            (options_.landscape ? tr("It would be larger in portrait.") : tr("It would be larger in landscape."));
  hint_->setText(hint);
  preview_->Show(std::move(pages), layout.Options());
}

void PrintBoxForm::ShowPlace() {
  const int count = preview_->PageCount();
  place_->setText(count == 0 ? QString() : tr("Page %1 of %2").arg(preview_->PageShown() + 1).arg(count));
  back_->setEnabled(preview_->PageShown() > 0);
  forth_->setEnabled(preview_->PageShown() + 1 < count);
}

void PrintBoxForm::cmdPreviousPage_Click() {
  preview_->TurnTo(preview_->PageShown() - 1);
}

void PrintBoxForm::cmdNextPage_Click() {
  preview_->TurnTo(preview_->PageShown() + 1);
}

Result<paper::PageRange> PrintBoxForm::Range() const {
  const auto read = [&](const NumberField& field, int unset) {
    return field.Text().empty() ? unset : LeadingInteger(field.Text());
  };
  const paper::PageRange range{read(*from_, 1), read(*to_, preview_->PageCount())};
  if (range.first < 1 || range.first > preview_->PageCount())
    return Refuse("Print Pages", fmt::format("Enter a first page from 1 to {}.", preview_->PageCount()), "txtFrom");
  if (range.last < range.first)
    return Refuse("Print Pages", "The last page cannot stand before the first one.", "txtTo");
  return range;
}

Result<int> PrintBoxForm::Copies() const {
  const int copies = LeadingInteger(copies_->Text());
  if (copies < 1 || copies > kMostCopies)
    return Refuse("Print Copies", fmt::format("Enter a number of copies from 1 to {}.", kMostCopies), "txtCopies");
  return copies;
}

void PrintBoxForm::Run(const std::function<int(paper::SheetLayout&)>& print) {
  try {
    paper::SheetLayout layout(sheet_, Chosen(), session.progress);
    if (layout.Cancelled() || !paper::AskAboutFit(session, layout)) return;
    if (print(layout) > 0) accept();
  } catch (const Failure& failure) {
    session.prompt.Tell(failure.subject, failure.cause, vellumark::Icon::Critical);
  }
}

void PrintBoxForm::cmdPrint_Click() {
  const Result<int> copies = Copies();
  if (!Accepted(copies)) return;
  const Result<paper::PageRange> range = Range();
  if (!Accepted(range)) return;
  const std::string device = ChosenDevice(*printer_);
  Run([&](paper::SheetLayout& layout) {
    const std::unique_ptr<QPrinter> printer = devices_.open(device);
    printer->setDocName(Q(sheet_.title));
    printer->setCopyCount(*copies);
    printer->setDuplex(kDuplex.at(static_cast<std::size_t>(duplex_->currentIndex())));
    return paper::PaintPages(*printer, device, layout, *range, session.progress);
  });
}

void PrintBoxForm::cmdPDF_Click() {
  const QString file = ChooseDocument(devices_.chooseFile, session.prompt, ChoiceOfPdf(), this);
  if (file.isEmpty()) return;
  Run([&](paper::SheetLayout& layout) { return paper::WritePdf(U8(file), sheet_.title, layout, session.progress); });
}

}  // namespace vellumark::desktop
