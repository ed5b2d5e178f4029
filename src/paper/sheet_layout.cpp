#include "paper/sheet_layout.h"

#include <fmt/format.h>

#include <QImageReader>
#include <algorithm>
#include <climits>
#include <cmath>
#include <utility>

#include "core/base/progress_run.h"
#include "core/labels/barcodes.h"

namespace vellumark::paper {
namespace {

constexpr double kLargeSize = 1.4;  // what is read across a bench, of the body's size
constexpr double kHeadingSize = 1.1;
constexpr int kLeastAskedSize = 7;         // below it a table is hard to read
constexpr std::size_t kRowsBetween = 512;  // of which the progress is told

// Points, of the bar codes of a block.
constexpr double kCodeHeight = 26;
constexpr double kCodeGap = 12;
constexpr double kCodeModule = 0.72;  // 0.25 mm

double HeightOfCodes(const SheetBlock& block, double least) {
  return std::max(least, (kCodeHeight + kCodeGap) * static_cast<double>(block.codes.size()));
}

}  // namespace

SheetLayout::SheetLayout(const Sheet& sheet, PageOptions options, Progress& progress)
    : sheet_(sheet),
      options_(std::move(options)),
      typeface_(options_.family),
      across_(options_.Layout().paintRect(QPageLayout::Point).width()) {
  options_.fontPercent = std::clamp(options_.fontPercent, kLeastFontPercent, 100);
  const ProgressRun run(progress, "Preparing to print ...");
  for (const SheetBlock& block : sheet.blocks) {
    columns_.push_back(nullptr);
    if (!block.table) continue;
    columns_.back() = std::make_unique<TableColumns>(*block.table, options_, typeface_, across_, block.widths);
    const double large = block.large ? kLargeSize : 1;
    fit_.needed = std::max(fit_.needed, columns_.back()->Width() * large / across_ * Page::kAcross);
    allRows_ += columns_.back()->Rows();
    cancelled_ = cancelled_ || progress.Cancelled();
  }
  const double wanted = fit_.needed * options_.fontPercent / 100;
  fit_.size = wanted < Page::kAcross + 1 ? static_cast<int>(BodySize())
                                         : static_cast<int>(kBodySize * Page::kAcross / fit_.needed);
  fit_.asks = fit_.size < kLeastAskedSize;
}

bool SheetLayout::BetterTurned() const {
  PageOptions turned = options_;
  turned.landscape = !turned.landscape;
  const double across = turned.Layout().paintRect(QPageLayout::Point).width();
  const double needed = fit_.needed * across_ / across;
  const int size = std::min(static_cast<int>(BodySize()), static_cast<int>(kBodySize * Page::kAcross / needed));
  return size > fit_.size;
}

void SheetLayout::SetPages(const PageSink& sink, Progress& progress) {
  const ProgressRun run(progress, "Printing ...");
  doneRows_ = 0;
  cancelled_ = false;
  PageSetter setter(options_, typeface_, Q(sheet_.title) + (sheet_.incomplete ? " - INCOMPLETE" : ""),
                    Q(sheet_.subtitle), sink);
  for (std::size_t i = 0; i < sheet_.blocks.size() && !setter.Stopped() && !cancelled_; ++i)
    SetBlock(setter, sheet_.blocks[i], columns_[i].get(), progress);
  if (!setter.Stopped() && !cancelled_) setter.Finish();
}

void SheetLayout::SetBlock(PageSetter& setter, const SheetBlock& block, const TableColumns* columns,
                           Progress& progress) {
  const double size = BodySize() * (block.large ? kLargeSize : 1);
  const double line = PageSetter::LineHeight(typeface_, size);
  if (!block.heading.empty()) {
    const double heading = size * kHeadingSize;
    const double high = PageSetter::LineHeight(typeface_, heading);
    // A heading does not stand alone at the end of a page.
    if (setter.Room() < high + std::max(3 * line, HeightOfCodes(block, line))) setter.TurnPage();
    setter.Put(0, Fit(typeface_, Q(block.heading), heading, true, setter.Across()).text, heading, true);
    setter.Down(high);
  }
  SetFields(setter, block, size);
  if (block.picture) SetPicture(setter, *block.picture);
  SetPhotos(setter, block, size);
  if (columns != nullptr) SetTable(setter, block, *columns, progress);
  SetLines(setter, block, size);
  SetCodes(setter, block, size);
  setter.Down(line * 0.6);
}

void SheetLayout::SetFields(PageSetter& setter, const SheetBlock& block, double size) const {
  const double line = PageSetter::LineHeight(typeface_, size);
  double captions = 0;
  for (const SheetField& field : block.fields)
    captions = std::max(captions, typeface_.Width(Q(field.caption), size) + TableColumns::Gap(typeface_, size));
  captions = std::min(captions, setter.Across() / 2);
  for (const SheetField& field : block.fields) {
    QString caption = Fit(typeface_, Q(field.caption), size, false, captions).text;
    for (const QString& text : Wrapped(typeface_, Q(field.value), size, true, setter.Across() - captions)) {
      if (setter.Room() < line) setter.TurnPage();
      setter.Put(0, std::exchange(caption, {}), size, false);
      setter.Put(captions, text, size, true);
      setter.Down(line);
    }
  }
}

void SheetLayout::SetPicture(PageSetter& setter, const SheetPicture& picture) {
  const double high = std::min(setter.Across() * picture.down / picture.across, setter.Body() / 2);
  if (setter.Room() < high) setter.TurnPage();
  setter.Picture(QByteArray::fromStdString(picture.svg), high * picture.across / picture.down, high);
  setter.Down(high);
}

// All of one height, in as many lines as they need.
void SheetLayout::SetPhotos(PageSetter& setter, const SheetBlock& block, double size) const {
  constexpr int kDots = 1000;  // more than paper shows at this height
  const double line = PageSetter::LineHeight(typeface_, size);
  const double gap = line * 0.6;
  const double high = setter.Body() / 5;
  double left = 0;
  std::vector<std::string> missing;
  for (const std::filesystem::path& file : block.photos) {
    QImageReader reader(Q(file.string()));
    if (reader.size().height() > kDots) reader.setScaledSize(reader.size().scaled(INT_MAX, kDots, Qt::KeepAspectRatio));
    QImage photo = reader.read();
    if (photo.isNull()) {
      missing.push_back(fmt::format("Photo {}: {}", file.filename().string(), reader.errorString().toStdString()));
      continue;
    }
    const double wide = std::min(high * photo.width() / photo.height(), setter.Across());
    const double tall = wide * photo.height() / photo.width();
    if (left > 0 && left + wide > setter.Across()) {
      setter.Down(high + gap);
      left = 0;
    }
    if (left == 0 && setter.Room() < high) setter.TurnPage();
    setter.Photo(std::move(photo), left, wide, tall);
    left += wide + gap;
  }
  if (left > 0) setter.Down(high + gap);
  SetLines(setter, {.lines = std::move(missing)}, size);
}

void SheetLayout::SetLines(PageSetter& setter, const SheetBlock& block, double size) const {
  const double line = PageSetter::LineHeight(typeface_, size);
  for (const std::string& text : block.lines)
    for (const QString& part : Wrapped(typeface_, Q(text), size, false, setter.Across())) {
      if (setter.Room() < line) setter.TurnPage();
      setter.Put(0, part, size, false);
      setter.Down(line);
    }
}

// What is scanned one after the other stands on one page, each code beside what it is and says.
void SheetLayout::SetCodes(PageSetter& setter, const SheetBlock& block, double size) const {
  const double line = PageSetter::LineHeight(typeface_, size);
  if (setter.Room() < HeightOfCodes(block, line)) setter.TurnPage();
  const double left = setter.Across() / 3;
  for (const SheetField& code : block.codes) {
    if (setter.Room() < kCodeHeight + kCodeGap) setter.TurnPage();
    const double room = left - TableColumns::Gap(typeface_, size);
    setter.Put(0, Fit(typeface_, Q(code.caption), size, false, room).text, size, false);
    setter.Put(0, Fit(typeface_, Q(code.value), size, true, room).text, size, true, line);
    if (const auto bars = BarsOf(Symbology::Code128, ReportCode128(code.value))) {
      const double most = (setter.Across() - left) / (bars->modules + kQuietModules);
      setter.PutBars(left, bars->widths, std::min(kCodeModule, most), kCodeHeight);
    }
    setter.Down(kCodeHeight + kCodeGap);
  }
}

double SheetLayout::SizeOf(const SheetBlock& block, const TableColumns& columns) const {
  const double size = BodySize() * (block.large ? kLargeSize : 1);
  const double needed = columns.Width() / across_ * Page::kAcross;
  if (!options_.fitToPage || needed * size / kBodySize < Page::kAcross + 1) return size;
  return std::max(1.0, std::floor(kBodySize * Page::kAcross / needed));
}

namespace {

/// Sets the rows of one group of columns.
class TableSetter {
 public:
  TableSetter(PageSetter& setter, const ListTable& table, const PageOptions& options,
              const std::vector<PaperColumn>& columns, double size)
      : setter_(setter),
        table_(table),
        options_(options),
        columns_(columns),
        size_(size),
        gap_(TableColumns::Gap(setter.Face(), size)),
        line_(PageSetter::LineHeight(setter.Face(), size)) {
    for (const PaperColumn& column : columns) {
      captions_.push_back(Wrapped(setter.Face(), Q(table.columns[column.column].Caption()), size, true, Room(column)));
      captionLines_ = std::max(captionLines_, captions_.back().size());
    }
  }

  /// With room for a row below them.
  void Captions() {
    if (setter_.Room() < static_cast<double>(captionLines_ + 1) * line_) setter_.TurnPage();
    if (!options_.headings) return;
    double left = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      const double from = line_ * static_cast<double>(captionLines_ - captions_[i].size());
      for (qsizetype n = 0; n < captions_[i].size(); ++n)
        PutCell(columns_[i], left, captions_[i][n], true, from + line_ * static_cast<double>(n));
      left += columns_[i].width;
    }
    setter_.Down(line_ * static_cast<double>(captionLines_));
  }

  void Row(const TableRow& row) {
    BeginRow();
    double left = 0;
    for (const PaperColumn& column : columns_) {
      PutCell(column, left, PaperText(table_.columns[column.column], row.Cell(column.column), options_.locale), false,
              0);
      left += column.width;
    }
    if (options_.guideLines) setter_.Rule(line_, true);
    setter_.Down(line_);
  }

  void Totals(const std::vector<std::string>& sums) {
    BeginRow();
    double left = 0;
    const std::vector<std::size_t> shown = table_.Shown();
    for (const PaperColumn& column : columns_) {
      const auto place = static_cast<std::size_t>(std::ranges::find(shown, column.column) - shown.begin());
      const QString sum = Q(sums[place]);
      PutCell(column, left, sum.contains('.') ? InLocale(sum, options_.locale) : sum, true, 0);
      left += column.width;
    }
    setter_.Rule(0, left, 0);
    setter_.Down(line_);
  }

 private:
  double Room(const PaperColumn& column) const { return std::max(0.0, column.width - gap_); }

  void BeginRow() {
    if (setter_.Room() >= line_) return;
    setter_.TurnPage();
    Captions();
  }

  void PutCell(const PaperColumn& column, double left, const QString& text, bool bold, double below) {
    const FittedText fitted = Fit(setter_.Face(), text, size_, bold, Room(column));
    // A smaller number stands on the base line of the others.
    below += setter_.Face().Ascent(size_) - setter_.Face().Ascent(fitted.size);
    if (column.right)
      setter_.PutRight(left + Room(column), fitted.text, fitted.size, bold, below);
    else
      setter_.Put(left, fitted.text, fitted.size, bold, below);
  }

  PageSetter& setter_;
  const ListTable& table_;
  const PageOptions& options_;
  const std::vector<PaperColumn>& columns_;
  double size_;
  double gap_;
  double line_;
  std::vector<QStringList> captions_;
  qsizetype captionLines_ = 0;
};

}  // namespace

void SheetLayout::SetTable(PageSetter& setter, const SheetBlock& block, const TableColumns& columns,
                           Progress& progress) {
  const ListTable& table = *block.table;
  const double size = SizeOf(block, columns);
  bool first = true;
  const auto groups = columns.Groups(across_, size / kBodySize);
  for (const std::vector<PaperColumn>& group : groups) {
    if (!std::exchange(first, false)) setter.TurnPage();
    TableSetter setterOfRows(setter, table, options_, group, size);
    setterOfRows.Captions();
    TableTotals totals(table);
    table.read([&](const TableRow& row) {
      totals.Add(row);
      if (options_.data) setterOfRows.Row(row);
      if (++doneRows_ % kRowsBetween == 0) {
        progress.Percent(100.0 * static_cast<double>(doneRows_) / static_cast<double>(allRows_ * groups.size()));
        cancelled_ = cancelled_ || progress.Cancelled();
      }
      return !cancelled_ && !setter.Stopped();
    });
    if (cancelled_ || setter.Stopped()) return;
    if (options_.totals && !table.totals.empty()) setterOfRows.Totals(totals.Texts());
  }
}

}  // namespace vellumark::paper
