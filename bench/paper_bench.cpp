// Long lists on paper.

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <QPainter>
#include <QPdfWriter>

#include <chrono>
#include <filesystem>

#include "core/base/table.h"
#include "core/shell/opening.h"
#include "paper/pdf.h"

namespace vellumark {
namespace {

// As many cells as a report may hold: names, dates and figures.
ListTable FullReport() {
  constexpr std::size_t kColumns = 10;
  constexpr std::size_t kRows = 34950;
  TableOf<std::size_t> table;
  for (std::size_t c = 0; c < kColumns; ++c) {
    if (c == 0)
      table.Add("Color Name", [](std::size_t row) { return fmt::format("PANTONE {} C", row); });
    else if (c == 1)
      table.Add(
          "Date",
          [](std::size_t row) { return DateTime::FromDayNumber(18000 + static_cast<std::int64_t>(row % 3000)); }, "",
          Format::Date);
    else
      table.Add(fmt::format("Qty {}", c), [c](std::size_t row) { return static_cast<double>(row % 997 * c) + 0.125; });
  }
  return table.Of([](const auto& take) {
    for (std::size_t row = 0; row < kRows; ++row)
      if (!take(row)) return;
  });
}

std::filesystem::path Target() {
  return std::filesystem::temp_directory_path() / "vellumark-bench.pdf";
}

/// Measured, laid out and written, over pages that repeat the first column.
void Ours(benchmark::State& state) {
  const paper::OffscreenFonts fonts;
  paper::PageOptions options;
  options.fitToPage = false;
  NoProgress progress;
  const Sheet sheet = Sheet::Of("Full", FullReport());
  int pages = 0;
  const auto begin = std::chrono::steady_clock::now();
  for (auto run : state) {
    paper::SheetLayout layout(sheet, options, progress);
    pages = paper::WritePdf(Target(), sheet.title, layout, progress);
  }
  state.counters["ms"] = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  state.counters["pages"] = pages;
  std::filesystem::remove(Target());
}
BENCHMARK(Ours)->Name("report_pdf_349500/ours")->Unit(benchmark::kMillisecond)->Iterations(1);

/// The same cells through the PDF writer alone, each where the one before ended.
void Raw(benchmark::State& state) {
  const paper::OffscreenFonts fonts;
  const ListTable table = FullReport();
  for (auto run : state) {
    QPdfWriter writer(QString::fromStdString(Target().string()));
    QPainter painter(&writer);
    painter.setFont(QFont("Arial", 12));
    int row = 0;
    table.read([&](const TableRow& cells) {
      if (row == 35) writer.newPage();
      row = row % 35 + 1;
      for (std::size_t c = 0; c < table.columns.size(); ++c)
        painter.drawText(QPointF(static_cast<double>(c) * 900, row * 280.0),
                         QString::fromStdString(CellText(table.columns[c], cells.Cell(c))));
      return true;
    });
  }
  std::filesystem::remove(Target());
}
BENCHMARK(Raw)->Name("report_pdf_349500/raw")->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace vellumark
