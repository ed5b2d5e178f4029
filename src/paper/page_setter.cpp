#include "paper/page_setter.h"

#include <QDateTime>
#include <algorithm>
#include <utility>

#include "paper/table_columns.h"

namespace vellumark::paper {
namespace {

// Units down the page.
constexpr double kTitleTop = 2.5;
constexpr double kHeadRule = 4.7;
constexpr double kCaptionTop = 5;
constexpr double kDatabaseTop = 6;
constexpr double kBodyRule = 7;
constexpr double kSubtitleTop = 7.4;
constexpr double kBodyTop = 9;
constexpr double kFootRule = 58;
constexpr double kNotice = 59;

constexpr double kNameSize = 28;
constexpr double kTitleSize = 24;
constexpr double kCaptionSize = 9;
constexpr double kFootSize = 7;

const QString kName = "The Vellumark";
const QString kNoticeText = "Printed by The Vellumark, production manager for the ink room";

}  // namespace

PageSetter::PageSetter(const PageOptions& options, const Typeface& typeface, QString title, QString subtitle,
                       PageSink sink)
    : options_(options),
      typeface_(typeface),
      title_(std::move(title)),
      subtitle_(std::move(subtitle)),
      sink_(std::move(sink)) {
  page_.area = options.Layout().paintRect(QPageLayout::Point).size();
  Begin();
}

double PageSetter::LineHeight(const Typeface& typeface, double size) {
  return typeface.LineHeight(size) + 0.1 * size;
}

void PageSetter::Begin() {
  page_ = Page{.area = page_.area, .texts = {}, .lines = {}, .codes = {}};
  ++number_;
  SetHead();
  SetFoot();
  top_ = firstTop_ = page_.Y(kBodyTop);
}

void PageSetter::Put(double x, const QString& text, double size, bool bold, double below) {
  if (text.isEmpty()) return;
  page_.texts.push_back({x, top_ + below + typeface_.Ascent(size), text, static_cast<float>(size), bold});
}

void PageSetter::PutRight(double right, const QString& text, double size, bool bold, double below) {
  Put(right - typeface_.Width(text, size, bold), text, size, bold, below);
}

void PageSetter::PutBars(double x, std::vector<std::uint8_t> widths, double module, double height, double below) {
  page_.codes.push_back({{x, top_ + below}, module, height, std::move(widths)});
}

void PageSetter::Rule(double below, bool dotted) {
  page_.lines.push_back({{0, top_ + below}, {Across(), top_ + below}, dotted});
}

void PageSetter::Rule(double left, double right, double below) {
  page_.lines.push_back({{left, top_ + below}, {right, top_ + below}, false});
}

void PageSetter::Picture(const QByteArray& svg, double wide, double high) {
  page_.pictures.push_back({{(Across() - wide) / 2, top_, wide, high}, svg});
}

void PageSetter::Photo(QImage photo, double left, double wide, double high) {
  page_.pictures.push_back({.place = {left, top_, wide, high}, .photo = std::move(photo)});
}

// As large as there is room for, between `topUnits` and so many units below it.
void PageSetter::Centered(double topUnits, const QString& text, double size, bool bold, double highUnits) {
  size = std::min({size, page_.Y(highUnits) / typeface_.LineHeight(1), Across() / typeface_.Width(text, 1, bold)});
  top_ = page_.Y(topUnits);
  Put((Across() - typeface_.Width(text, size, bold)) / 2, text, size, bold);
}

void PageSetter::Ends(double topUnits, const QString& left, const QString& right, double size) {
  top_ = page_.Y(topUnits);
  const double room = Across() - typeface_.Width(right, size) - TableColumns::Gap(typeface_, size);
  Put(0, Fit(typeface_, left, size, false, room).text, size, false);
  PutRight(Across(), right, size, false);
}

void PageSetter::SetHead() {
  Centered(0, kName, kNameSize, true, kTitleTop);
  Centered(kTitleTop, title_, kTitleSize, false, kHeadRule - kTitleTop);
  top_ = 0;
  Rule(page_.Y(kHeadRule));
  Rule(page_.Y(kBodyRule));
  const double size = std::min(kCaptionSize, page_.Y(kDatabaseTop - kCaptionTop) / typeface_.LineHeight(1));
  Ends(kCaptionTop, options_.caption, QString("Page %1").arg(number_), size);
  const DateTime& at = options_.printed;
  const bool plain = options_.locale == QLocale::c();
  const QDateTime moment(QDate(at.year, at.month, at.day), QTime(at.hour, at.minute, at.second));
  const QString day = plain ? Q(at.DateText()) : options_.locale.toString(moment.date(), QLocale::ShortFormat);
  const QString time = plain ? moment.toString("HH:mm") : options_.locale.toString(moment.time(), QLocale::ShortFormat);
  Ends(kDatabaseTop, options_.database.isEmpty() ? QString() : "Database: " + options_.database, day + "  " + time,
       size);
  if (!subtitle_.isEmpty()) Centered(kSubtitleTop, subtitle_, kCaptionSize + 1, true, kBodyTop - kSubtitleTop);
}

void PageSetter::SetFoot() {
  const double above = options_.trademark.isEmpty() ? 0 : 1;
  const double size = std::min(kFootSize, page_.Y(1) / typeface_.LineHeight(1));
  top_ = 0;
  Rule(page_.Y(kFootRule - above));
  top_ = page_.Y(kNotice - above);
  Put(0, kNoticeText, size, false);
  top_ = page_.Y(kNotice);
  Put(0, Fit(typeface_, options_.trademark, size, false, Across()).text, size, false);
  bottom_ = page_.Y(kFootRule - above);
}

void PageSetter::TurnPage() {
  Finish();
  Begin();
}

void PageSetter::Finish() {
  stopped_ = stopped_ || !sink_(std::move(page_));
  page_ = Page{.area = options_.Layout().paintRect(QPageLayout::Point).size(), .texts = {}, .lines = {}, .codes = {}};
}

}  // namespace vellumark::paper
