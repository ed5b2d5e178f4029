#include "paper/label_print.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>

#define ZX_USE_UTF8 1
#include <ZXing/ReadBarcode.h>

#include "core/base/files.h"
#include "core/base/text.h"
#include "core/labels/label_layouts.h"
#include "paper/label_painter.h"
#include "paper/pdf.h"
#include "paper/photo_maker.h"

namespace vellumark::paper {
namespace {

using What = LabelElement::What;

constexpr double kScreenDots = 96;                  // of an inch of a picture

// The decoder makes black what a cut file lacks.
bool IsWholeBitmap(std::string_view bytes, const QImage& image) {
  const auto number = [&](std::size_t at, std::size_t size) {
    std::size_t value = 0;
    for (std::size_t i = size; i > 0; --i) value = value << 8U | static_cast<unsigned char>(bytes.at(at + i - 1));
    return value;
  };
  constexpr std::size_t kHeader = 54;
  if (!bytes.starts_with("BM") || bytes.size() < kHeader) return true;  // no bitmap, or one without a table of lines
  const bool packed = number(30, 4) == 1 || number(30, 4) == 2;
  const std::size_t line = (static_cast<std::size_t>(image.width()) * number(28, 2) + 31) / 32 * 4;
  const std::size_t lines = packed ? number(34, 4) : line * static_cast<std::size_t>(image.height());
  return bytes.size() >= number(10, 4) + lines;
}

// A piece of a label as the printer will have it, in gray.
QImage Rendered(const Session& session, const LabelDrawing& drawing, int dotsPerInch, const QRect& piece) {
  QImage image(piece.size(), QImage::Format_Grayscale8);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.translate(-piece.topLeft());
  LabelPainter(painter, dotsPerInch, PicturesOfLabels(session)).Paint(drawing, 0, 0);
  return image;
}

std::string ReadFrom(const QImage& image, ZXing::BarcodeFormats formats) {
  const ZXing::ImageView view(image.constBits(), image.width(), image.height(), ZXing::ImageFormat::Lum,
                              static_cast<int>(image.bytesPerLine()));
  const auto read = ZXing::ReadBarcode(
      view, ZXing::DecodeHints().setFormats(formats).setTryHarder(true).setTryCode39ExtendedMode(false));
  if (!read.isValid()) return {};
  const ZXing::ByteArray& bytes = read.bytes();
  return {bytes.begin(), bytes.end()};
}

CodeCheck Judged(const LabelElement& element, const std::string& wanted, const std::string& read) {
  CodeCheck check{element.item, element.text, read == wanted};
  if (check.Reads) return check;
  check.Reason =
      read.empty() ? "It cannot be read: something lies over it, or it is too small." : "It reads as \"" + read + "\".";
  return check;
}

CodeCheck CheckCode(const Session& session, const LabelDrawing& drawing, const LabelElement& element, int dots) {
  const auto font = EncodeBarcode(drawing.symbology, element.text);
  if (!font) return {element.item, element.text, false, font.error().text};
  const auto box = BoxOfCode(drawing, element, dots);
  if (!box) return {element.item, element.text, false, "Its check is no character of the bar code."};
  const QRect label(0, 0, static_cast<int>(std::lround(drawing.width * dots / kTwipsPerInch)),
                    static_cast<int>(std::lround(drawing.length * dots / kTwipsPerInch)));
  const QRect code(box->left, box->top, box->Width(), box->height);
  if (!label.contains(code)) return {element.item, element.text, false, "It is longer than the label has room for."};
  const QRect piece = code.adjusted(-box->quiet, 0, box->quiet, 0) & label;
  const auto format =
      drawing.symbology == Symbology::Code128 ? ZXing::BarcodeFormat::Code128 : ZXing::BarcodeFormat::Code39;
  return Judged(element, ReadBackOf(drawing.symbology, element.text),
                ReadFrom(Rendered(session, drawing, dots, piece), format));
}

CodeCheck CheckSquare(const Session& session, const LabelDrawing& drawing, const LabelElement& element, int dots) {
  const QRect label(0, 0, static_cast<int>(drawing.width * dots / kTwipsPerInch),
                    static_cast<int>(drawing.length * dots / kTwipsPerInch));
  // It stands in the lower right corner, at most so large.
  const int side = std::min({label.width(), label.height(), 3 * dots});
  const QRect piece(label.right() - side + 1, label.bottom() - side + 1, side, side);
  return Judged(element, element.text, ReadFrom(Rendered(session, drawing, dots, piece), ZXing::BarcodeFormat::QRCode));
}

CodeCheck CheckPicture(const Session& session, const LabelElement& element) {
  const auto checked = CheckLabelPictureFile(PicturesOfLabels(session) / element.text);
  return {element.item, element.text, checked.has_value(), checked ? "" : checked.error().text};
}

}  // namespace

std::vector<CodeCheck> CheckCodes(const Session& session, const LabelDrawing& drawing, int dotsPerInch) {
  const OffscreenFonts fonts;
  std::vector<CodeCheck> checks;
  for (const LabelElement& element : drawing.elements) {
    if (element.what == What::Code) checks.push_back(CheckCode(session, drawing, element, dotsPerInch));
    if (element.what == What::Square) checks.push_back(CheckSquare(session, drawing, element, dotsPerInch));
    if (element.what == What::Picture)
      if (CodeCheck check = CheckPicture(session, element); !check.Reads) checks.push_back(std::move(check));
  }
  return checks;
}

std::vector<CodeCheck> CheckPlaces(const Session& session, const LabelDrawing& drawing, int dotsPerInch) {
  const OffscreenFonts fonts;
  const double scale = dotsPerInch / kTwipsPerInch;
  const QRectF label = QRectF(0, 0, drawing.width * scale, drawing.length * scale).adjusted(-1, -1, 1, 1);
  std::vector<std::optional<QRectF>> areas;
  for (const LabelElement& element : drawing.elements)
    areas.push_back(AreaOf(drawing, element, dotsPerInch, PicturesOfLabels(session)));
  std::vector<CodeCheck> faults;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const LabelElement& element = drawing.elements[i];
    if (!areas[i] || element.what == What::Code || element.what == What::Square) continue;
    CodeCheck fault{element.item, element.text};
    if (!label.contains(*areas[i])) fault.Reason = "It is larger than the label has room for.";
    for (std::size_t j = 0; j < areas.size() && fault.Reason.empty(); ++j) {
      const bool asked = j < i && drawing.elements[j].what == What::Text;
      if (j != i && !asked && areas[j] && areas[i]->adjusted(1, 1, -1, -1).intersects(*areas[j]))
        fault.Reason = "It runs into " + drawing.elements[j].item + ".";
    }
    if (!fault.Reason.empty()) faults.push_back(std::move(fault));
  }
  return faults;
}

Result<void> AskAboutFaults(Session& session, const std::vector<CodeCheck>& checks) {
  std::string faults;
  for (const CodeCheck& check : checks)
    if (!check.Reads) faults += "\n" + check.Field + ": " + check.Text + "\n" + check.Reason + "\n";
  if (faults.empty() ||
      session.prompt.Ask("Label Bar Codes", "These do not read as they should:\n" + faults + "\nPrint nevertheless?",
                         Answer::No))
    return {};
  return Decline("Label Bar Codes");
}

int PrintLabelsToFile(const Session& session, const LabelJob& job, const std::filesystem::path& file) {
  const OffscreenFonts fonts;
  return WritePdfPages(file, "Labels", job.dotsPerInch, [&](QPagedPaintDevice& device, const std::function<bool()>&) {
    SetUpLabelPages(device, job.paper);
    return PaintLabels(device, file.string(), session, job);
  });
}

Result<void> CheckLabelPictureFile(const std::filesystem::path& file) {
  const auto none = [&] { return Refuse("Picture Selection", file.string() + " is no picture that can be read."); };
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return none();
  const std::string bytes = ReadFileBytes(file, kLargestLabelPicture + 1);
  if (bytes.size() > kLargestLabelPicture) return none();
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setDecideFormatFromContent(true);
  const QByteArray format = reader.format();
  // Before it is decoded: a few bytes can tell of a picture that no memory holds.
  if (const QSize size = reader.size(); size.isValid())
    if (auto checked = CheckLabelPicture(format.toStdString(), size.width(), size.height(), kScreenDots); !checked)
      return checked;
  const QImage image = reader.read();
  if (image.isNull() || (format == "jpeg" ? !IsWholeJpeg(bytes) : !IsWholeBitmap(bytes, image))) return none();
  // A file that tells no resolution is taken as of the screen.
  const double dots = image.dotsPerMeterX() > 0 ? image.dotsPerMeterX() * 0.0254 : kScreenDots;
  return CheckLabelPicture(format.toStdString(), image.width(), image.height(), dots);
}

}  // namespace vellumark::paper
