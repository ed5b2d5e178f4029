#include "paper/pdf.h"

#include <QGuiApplication>
#include <QIODevice>
#include <QPainter>
#include <QPdfWriter>
#include <exception>

#include "core/base/files.h"
#include "core/base/refusal.h"

namespace vellumark::paper {
namespace {

constexpr int kDotsPerInch = 1200;

/// Takes what the PDF writer writes, which itself looks at no error.
class FileDevice final : public QIODevice {
 public:
  explicit FileDevice(FileBeside& file) : file_(file) { open(QIODevice::WriteOnly); }
  bool isSequential() const override { return true; }
  void Check() const {
    if (failed_) std::rethrow_exception(failed_);
  }
  bool Failed() const { return failed_ != nullptr; }

 protected:
  qint64 readData(char*, qint64) override { return -1; }
  qint64 writeData(const char* bytes, qint64 count) override {
    if (failed_) return count;
    try {
      file_.Write({bytes, static_cast<std::size_t>(count)});
    } catch (const Failure&) {
      failed_ = std::current_exception();  // thrown on by Check, outside of the writer
    }
    return count;
  }

 private:
  FileBeside& file_;
  std::exception_ptr failed_;
};

/// Lets the painting stop early.
class Watched final : public Progress {
 public:
  Watched(Progress& progress, const std::function<bool()>& failed) : progress_(progress), failed_(failed) {}
  void Begin(std::string_view text) override { progress_.Begin(text); }
  void Percent(double percent) override { progress_.Percent(percent); }
  bool Cancelled() override { return failed_() || progress_.Cancelled(); }
  void End() override { progress_.End(); }

 private:
  Progress& progress_;
  const std::function<bool()>& failed_;
};

}  // namespace

OffscreenFonts::OffscreenFonts() {
  if (QCoreApplication::instance() != nullptr) return;
  // A scheduled job has no session of a desktop, which is no news to whoever reads what it tells.
  static QtMessageHandler others = nullptr;
  others = qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.startsWith("QStandardPaths: XDG_RUNTIME_DIR")) others(type, context, text);
  });
  application_ = std::make_unique<QGuiApplication>(count_, words_.data());
  qInstallMessageHandler(others);
}

OffscreenFonts::~OffscreenFonts() = default;

int PaintPages(QPagedPaintDevice& device, const std::string& name, SheetLayout& layout, PageRange range,
               Progress& progress) {
  device.setPageLayout(layout.Options().Layout());
  QPainter painter;
  if (!painter.begin(&device)) throw Failure(name, "cannot be printed to");
  PagePainter pages(painter, layout.Face());
  int number = 0;
  int painted = 0;
  layout.SetPages(
      [&](const Page& page) {
        if (++number < range.first) return true;
        if (painted > 0 && !device.newPage()) throw Failure(name, "takes no further page");
        pages.Paint(page);
        ++painted;
        return range.last == 0 || number < range.last;
      },
      progress);
  if (!painter.end()) throw Failure(name, "cannot be printed to");
  return painted;
}

int WritePdfPages(const std::filesystem::path& file, const std::string& title, int dotsPerInch,
                  const std::function<int(QPagedPaintDevice&, const std::function<bool()>& failed)>& paint) {
  FileBeside beside(file, Readers::Everybody);
  int pages = 0;
  {
    FileDevice device(beside);
    QPdfWriter writer(&device);
    writer.setResolution(dotsPerInch);
    writer.setTitle(Q(title));
    writer.setCreator("The Vellumark");
    pages = paint(writer, [&] { return device.Failed(); });
    device.Check();
  }
  if (pages > 0) beside.Replace();
  return pages;
}

int WritePdf(const std::filesystem::path& file, const std::string& title, SheetLayout& layout, Progress& progress) {
  return WritePdfPages(file, title, kDotsPerInch, [&](QPagedPaintDevice& device, const std::function<bool()>& failed) {
    Watched watched(progress, failed);
    const int pages = PaintPages(device, file.string(), layout, {}, watched);
    return layout.Cancelled() ? 0 : pages;
  });
}

}  // namespace vellumark::paper
