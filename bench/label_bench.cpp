// Labels: a sheet of them into a PDF, and bar codes encoded.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <QPainter>
#include <QPdfWriter>
#include <chrono>
#include <filesystem>
#include <optional>
#include <random>

#include "core/labels/label_drawing.h"
#include "core/session/session.h"
#include "core/settings/support_files.h"
#include "large_room.h"
#include "paper/label_painter.h"
#include "paper/label_print.h"
#include "paper/pdf.h"

namespace vellumark::bench {
namespace {

constexpr int kAcross = 3;
constexpr int kDown = 10;
constexpr const char* kLayout = "Default Label";

/// Support Files of their own, whose layout has thirty labels on a sheet, each with three texts and three codes.
struct LabelSheet {
  LabelSheet() {
    std::filesystem::create_directories(folder);
    session.DataFolder = folder;
    session.support = std::make_unique<SupportFiles>(folder);
    WriteMissingSupportFiles(*session.support);
    session.support->label.Change([](SupportRecords& file) {
      const std::vector<SupportRecord> records = file.Records();
      for (const SupportRecord& r : records)
        if (r.key.ends_with(" Visible")) file.Set(r.layout, r.key, "0");
      for (const auto& [key, value] :
           {std::pair{"Labels Across", "3"}, {"Labels Down", "10"}, {"Label Width", "4320"}, {"Label Length", "1440"},
            {"Label BC Type", "Code 128"}})
        file.Set(kLayout, key, value);
      int top = 30;
      for (const std::string item : {"Color Name", "Color Code", "Database"}) {
        for (const std::string& shown : {item, item + " BC"}) {
          file.Set(kLayout, shown + " Visible", "1");
          file.Set(kLayout, shown + " Top", std::to_string(top));
          file.Set(kLayout, shown + " Left", shown == item ? "60" : "1800");
        }
        file.Set(kLayout, item + " FontSize", "8");
        top += 450;
      }
    });
    LabelData data;
    data["Color Name"] = "RED 32";
    data["Color Code"] = "R-32";
    data["Database"] = "OFFSET";
    job.paper = PaperOfLayout(session, LabelKind::Label, kLayout);
    job.drawings = {DrawLabel(session, kLayout, data, {})};
    job.count = kAcross * kDown;
  }
  ~LabelSheet() { std::filesystem::remove_all(folder); }

  std::filesystem::path folder = std::filesystem::temp_directory_path() / "vellumark-bench-labels";
  SilentPrompt prompt;
  NoProgress progress;
  SystemClock clock;
  Session session{prompt, progress, clock};
  paper::LabelJob job;
};

std::filesystem::path Target() {
  return std::filesystem::temp_directory_path() / "vellumark-bench-labels.pdf";
}

void PageOurs(benchmark::State& state) {
  const paper::OffscreenFonts fonts;
  LabelSheet sheet;
  const auto checks = paper::CheckCodes(sheet.session, sheet.job.drawings[0], sheet.job.dotsPerInch);
  if (checks.size() != 3 || !std::ranges::all_of(checks, &paper::CodeCheck::Reads))
    state.SkipWithError("not all three codes of a label read");
  double best = 0;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    if (paper::PrintLabelsToFile(sheet.session, sheet.job, Target()) != 1) state.SkipWithError("not on one page");
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    best = best == 0 ? ms : std::min(best, ms);
  }
  state.counters["ms"] = best;
  std::filesystem::remove(Target());
}
BENCHMARK(PageOurs)->Name("label_page/ours")->Unit(benchmark::kMillisecond);

/// The same bars and texts through the PDF writer alone, at places that are known already.
void PageRaw(benchmark::State& state) {
  const paper::OffscreenFonts fonts;
  LabelSheet sheet;
  const paper::LabelJob& job = sheet.job;
  std::vector<QRectF> bars;
  std::vector<std::pair<QPointF, QString>> texts;
  const double scale = job.dotsPerInch / kTwipsPerInch;
  for (int i = 0; i < job.count; ++i) {
    const LabelPlace place = PlaceOfLabel(job.paper, 1, i);
    for (const LabelElement& element : job.drawings[0].elements) {
      const auto box = paper::BoxOfCode(job.drawings[0], element, job.dotsPerInch);
      if (element.what == LabelElement::What::Text)
        texts.emplace_back(QPointF(place.left + element.left, place.top + element.top + 160) * scale,
                           QString::fromStdString(element.text));
      if (element.what != LabelElement::What::Code || !box) continue;
      double x = place.left * scale + box->left;
      for (std::size_t n = 0; n < box->bars.widths.size(); ++n) {
        const double width = box->bars.widths[n] * box->module;
        if (n % 2 == 0) bars.emplace_back(x, place.top * scale + box->top, width, box->height);
        x += width;
      }
    }
  }
  for (auto unused : state) {
    QPdfWriter writer(QString::fromStdString(Target().string()));
    writer.setResolution(job.dotsPerInch);
    QPainter painter(&writer);
    painter.setFont(QFont("Arial", 8));
    for (const QRectF& bar : bars) painter.fillRect(bar, Qt::black);
    for (const auto& [at, text] : texts) painter.drawText(at, text);
  }
  std::filesystem::remove(Target());
}
BENCHMARK(PageRaw)->Name("label_page/raw")->Unit(benchmark::kMillisecond);

// ---- code128_10k

std::vector<std::string> Texts() {
  std::mt19937 random(7);
  std::vector<std::string> texts(10000);
  for (std::string& text : texts) {
    text = "<CN>";
    for (std::size_t left = 6 + random() % 25; left > 0; --left)
      text += random() % 2 == 0 ? static_cast<char>('0' + random() % 10) : static_cast<char>('A' + random() % 26);
  }
  return texts;
}

void Code128Ours(benchmark::State& state) {
  const std::vector<std::string> texts = Texts();
  double best = 0;
  for (auto unused : state) {
    const auto begin = std::chrono::steady_clock::now();
    std::size_t characters = 0;
    for (const std::string& text : texts) characters += Code128(text)->size();
    benchmark::DoNotOptimize(characters);
    const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    best = best == 0 ? ms : std::min(best, ms);
  }
  state.counters["ms"] = best;
  // Every answer stands for its text: start, as many values as the text needs, check and stop.
  for (const std::string& text : texts)
    if (const auto font = Code128(text); font->size() < 6 || font->front() != 204 || font->back() != 206)
      state.SkipWithError("a code without its start or stop");
  if (*Code128("AB1234") != FontString{204, 65, 66, 199, 44, 66, 202, 206}) state.SkipWithError("another code");
}
BENCHMARK(Code128Ours)->Name("code128_10k/ours")->Unit(benchmark::kMillisecond);

/// The characters of each text as they are, with start, check and stop: no set is chosen, no pair made.
void Code128Raw(benchmark::State& state) {
  const std::vector<std::string> texts = Texts();
  for (auto unused : state) {
    std::size_t characters = 0;
    for (const std::string& text : texts) {
      FontString font{204};
      int sum = 104;
      for (std::size_t i = 0; i < text.size(); ++i) {
        font.push_back(text[i]);
        sum += static_cast<int>(i + 1) * (text[i] - 32);
      }
      font.push_back(sum % 103 + (sum % 103 < 95 ? 32 : 100));
      font.push_back(206);
      characters += font.size();
    }
    benchmark::DoNotOptimize(characters);
  }
}
BENCHMARK(Code128Raw)->Name("code128_10k/raw")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vellumark::bench
