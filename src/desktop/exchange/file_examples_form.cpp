#include "desktop/exchange/file_examples_form.h"

#include <algorithm>

#include "core/exchange/text_file.h"
#include "desktop/kit/icons.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

constexpr int kCellWidth = 168;

}  // namespace

ExportImportFileExamples::ExportImportFileExamples(WindowList& windowList, FileChooser choose)
    : Window(windowList, "ExportImportFileExamples", tr("Formats of Formula Files")),
      choose_(std::move(choose)),
      cells_(std::make_shared<TableSource>()) {
  setWindowIcon(Icon("DBTools"));
  Form form(*this);
  QStringList options;
  for (int n = 0; n < kWrittenFormats; ++n) options += Q(FormulaFormats()[static_cast<std::size_t>(n)].option);
  format_ = form.Combo("cmbFormat", options);
  format_->DoNotTrack();
  form.Row(tr("&Format"), format_);
  words_ = form.Label("lblWords");
  words_->setWordWrap(true);
  form.Wide(words_);
  grid_ = form.Table("fgExample");
  grid_->setAccessibleName(tr("A file of this format"));
  form.Wide(grid_, 1);
  form.ButtonsWithoutDefault(
      {form.Button("cmdSaveExample", tr("&Save Example")), form.Button("cmdClose", tr("Close"))});
  format_->OnChosen([this](int) { ShowExample(); });
  ShowExample();
}

void ExportImportFileExamples::OnOpen(const Arguments& arguments) {
  if (arguments.Has("Format")) format_->setCurrentIndex(static_cast<int>(arguments.Number("Format")));
  ShowExample();
}

void ExportImportFileExamples::ShowExample() {
  example_ = ExampleOf(static_cast<FormulaFormat>(std::max(0, format_->currentIndex())));
  QString words;
  for (const std::string& sentence : example_.words) words += (words.isEmpty() ? "" : "\n") + Q(sentence);
  words_->setText(words);
  std::size_t width = 0;
  for (const auto& row : example_.cells) width = std::max(width, row.size());
  std::vector<GridColumn> columns;
  for (std::size_t n = 0; n < width; ++n) {
    columns.push_back(GridColumn::Text(QString(QChar('A' + static_cast<int>(n))), kCellWidth));
    columns.back().sortable = false;  // the order is that of the file
  }
  cells_->Clear();
  for (const std::vector<std::string>& cells : example_.cells) {
    TableSource::Row row(cells.begin(), cells.end());
    row.resize(width);
    cells_->Add(std::move(row));
  }
  grid_->SetColumns(std::move(columns));
  grid_->SetSource(cells_);
  grid_->Refresh();
}

void ExportImportFileExamples::cmdSaveExample_Click() {
  const auto format = static_cast<std::size_t>(std::max(0, format_->currentIndex()));
  const QString extension = Q(FormulaFormats()[format].extension);
  const QString path = ChooseDocument(
      choose_, session.prompt, {tr("Save Example"), tr("Formula file (*%1)").arg(extension), extension, {}}, this);
  if (!path.isEmpty()) WriteTextFile(std::filesystem::path(U8(path)), example_.text);
}

}  // namespace vellumark::desktop
