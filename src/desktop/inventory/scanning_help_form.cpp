#include "desktop/inventory/scanning_help_form.h"

#include <QPainter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "desktop/kit/look.h"

namespace vellumark::desktop {
namespace {

constexpr QSize kPicture(640, 200);

struct Painting {
  QPainter& painter;
  const Colors& colors = Look::Now();

  void Box(const QRect& box, const QColor& fill) {
    painter.setPen(colors.border);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, 4, 4);
  }
  void Text(const QRect& box, const QString& text, int flags = Qt::AlignLeft | Qt::AlignVCenter) {
    painter.setPen(colors.text);
    painter.drawText(box, flags, text);
  }
  void Arrow(int left, int right, int y) {
    painter.setPen(QPen(colors.accent, 3));
    painter.drawLine(left, y, right, y);
    painter.drawLine(right, y, right - 8, y - 6);
    painter.drawLine(right, y, right - 8, y + 6);
  }
  // Bars as they look, not as they read.
  void Bars(const QRect& box) {
    static constexpr std::array widths{2, 4, 1, 3, 1, 1, 4, 2, 3, 1, 2, 1, 4, 1, 3, 2};
    int x = box.left();
    for (std::size_t i = 0; x < box.right(); ++i) {
      const int width = widths[i % widths.size()];
      if (i % 2 == 0) painter.fillRect(QRect(x, box.top(), std::min(width, box.right() - x), box.height()), Qt::black);
      x += width;
    }
  }
  // A label as it comes out of the printer: black on white in either theme.
  void Label(const QRect& box, const QStringList& lines) {
    Box(box, Qt::white);
    const int height = (box.height() - space::kGap) / static_cast<int>(lines.size());
    for (int i = 0; i < lines.size(); ++i) {
      const QRect line(box.left() + space::kGap, box.top() + space::kUnit + i * height, box.width() - 2 * space::kGap,
                       height);
      painter.setPen(Qt::black);
      painter.drawText(line.adjusted(0, 0, -line.width() / 2, 0), Qt::AlignLeft | Qt::AlignVCenter, lines[i]);
      Bars(line.adjusted(line.width() / 2, 4, 0, -4));
    }
  }
  void Lines(const QRect& box, const QStringList& lines) {
    Box(box, colors.surface);
    Text(box.adjusted(space::kGap, space::kUnit, -space::kUnit, -space::kUnit), lines.join('\n'),
         Qt::AlignLeft | Qt::AlignTop);
  }
  void Sign(const QRect& box, const QColor& fill, const QString& text) {
    Box(box, fill);
    painter.setPen(Look::Contrast(Qt::white, fill) > Look::Contrast(Qt::black, fill) ? Qt::white : Qt::black);
    painter.drawText(box.adjusted(space::kUnit, 0, -space::kUnit, 0), Qt::AlignCenter | Qt::TextWordWrap, text);
  }
};

void DrawLabel(Painting& on) {
  on.Label({16, 16, 400, 168}, {"PANTONE 185 C", "Lot A1", "B10_1"});
  on.Arrow(432, 488, 100);
  on.Lines({504, 24, 124, 152}, {"<CN>", "<LN>", "<LC>"});
}

void DrawLines(Painting& on) {
  on.Label({16, 40, 176, 120}, {"RED", "A1"});
  on.Arrow(204, 252, 100);
  on.Lines({264, 24, 152, 152}, {"<CN>RED", "<LN>A1", "5", "<CN>BLUE", "<LN>A2", "7"});
  on.Arrow(428, 476, 100);
  on.Sign({488, 40, 140, 48}, on.colors.good, ScanningHelpForm::tr("RED, A1, 5"));
  on.Sign({488, 104, 140, 48}, on.colors.good, ScanningHelpForm::tr("BLUE, A2, 7"));
}

void DrawJob(Painting& on) {
  on.Lines({16, 40, 168, 120}, {"<JN>J-1042", "<CN>RED", "<LN>A1", "3"});
  on.Arrow(196, 252, 100);
  on.Sign({264, 32, 152, 56}, on.colors.warning, ScanningHelpForm::tr("Job J-1042: 3 less used"));
  on.Sign({264, 112, 152, 56}, on.colors.good, ScanningHelpForm::tr("Lot A1: 3 more in stock"));
  on.Arrow(428, 476, 100);
  on.Text({488, 40, 140, 120}, ScanningHelpForm::tr("Both together,\nor neither."), Qt::AlignLeft | Qt::AlignVCenter);
}

void DrawResult(Painting& on) {
  on.Sign({16, 24, 184, 56}, on.colors.danger, ScanningHelpForm::tr("Not booked"));
  on.Lines({16, 96, 184, 80}, {ScanningHelpForm::tr("Choose a Color Type"), ScanningHelpForm::tr("- Process Again")});
  on.Arrow(212, 268, 100);
  on.Sign({280, 72, 152, 56}, on.colors.accent, ScanningHelpForm::tr("Process Again"));
  on.Arrow(444, 484, 100);
  on.Sign({492, 72, 136, 56}, on.colors.good, ScanningHelpForm::tr("Booked"));
}

void DrawKeyboard(Painting& on) {
  on.Sign({16, 40, 184, 48}, on.colors.danger, ScanningHelpForm::tr("Caps Lock on"));
  on.Sign({16, 112, 184, 48}, on.colors.good, ScanningHelpForm::tr("Caps Lock off"));
  on.Lines({264, 40, 168, 120}, {ScanningHelpForm::tr("Ends of a code:"), "CR", "LF", "CR LF", "Tab"});
  on.Text({456, 40, 176, 120}, ScanningHelpForm::tr("Each of them\nis Enter."));
}

struct Slide {
  const char* title;
  const char* text;
  void (*draw)(Painting&);
};
constexpr std::array<Slide, 5> kSlides{{
    {QT_TRANSLATE_NOOP("ScanningHelpForm", "What a label says"),
     QT_TRANSLATE_NOOP(
         "ScanningHelpForm",
         "Each code of a label begins with a tag that tells what it is: <CN> the name of the color, <CC> its "
         "code, <CT> its type, <DB> the Database, <LR> the reference, <LN> the number, <LL> the location and "
         "<LC> the container of the lot, <JN> the job. Labels carry the tags while \"Add data identifiers\" "
         "is checked in their layout. A QR code holds them all and is read with one scan."),
     DrawLabel},
    {QT_TRANSLATE_NOOP("ScanningHelpForm", "Step 1: scan and process"),
     QT_TRANSLATE_NOOP(
         "ScanningHelpForm",
         "Scan the codes of a container in any order, then scan or type its quantity and press Enter: a "
         "quantity ends a record. The list shows at once what each record will do. Nothing is booked before "
         "Process."),
     DrawLines},
    {QT_TRANSLATE_NOOP("ScanningHelpForm", "Ink that comes back from a Job"),
     QT_TRANSLATE_NOOP(
         "ScanningHelpForm",
         "With a job number among its codes a container is returned: the Job used so much less, and the stock "
         "has it again. At most what is still out can come back. Without a job number the quantity is added "
         "to the stock of the color."),
     DrawJob},
    {QT_TRANSLATE_NOOP("ScanningHelpForm", "Step 2: view results and update"),
     QT_TRANSLATE_NOOP(
         "ScanningHelpForm",
         "Each record says what became of it. Mend the fields of one that was not booked, or choose its lot, "
         "and Process Again. What was booked is never booked twice; Take back undoes it."),
     DrawResult},
    {QT_TRANSLATE_NOOP("ScanningHelpForm", "The scanner"),
     QT_TRANSLATE_NOOP(
         "ScanningHelpForm",
         "Turn off Caps Lock: it changes the letters that a scanner types. Whatever your scanner sends behind "
         "a code counts as Enter. In other windows a scanned name, job or lot goes into the field with the "
         "cursor, without its tag."),
     DrawKeyboard},
}};

class SlidePicture : public QWidget {
 public:
  explicit SlidePicture(const Slide& slide) : slide_(slide) {
    setFixedSize(kPicture);
    setAccessibleName(ScanningHelpForm::tr(slide.title));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(Look::Base());
    Painting on{painter};
    on.Box(rect().adjusted(0, 0, -1, -1), on.colors.window);
    slide_.draw(on);
  }

 private:
  const Slide& slide_;
};

}  // namespace

ScanningHelpForm::ScanningHelpForm(WindowList& windowList, QWidget* owner)
    : Dialog(windowList, owner, "ScanningHelpForm", tr("Barcode Scanning")), slides_(new QStackedWidget) {
  Form form(*this);
  slides_->setObjectName("Slides");
  for (const Slide& slide : kSlides) {
    auto* page = new QWidget;
    auto* lines = new QVBoxLayout(page);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(space::kGap);
    auto* title = new QLabel(tr(slide.title));
    title->setFont(Look::Heading());
    auto* text = new QLabel(tr(slide.text));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setFixedWidth(kPicture.width());
    text->setMinimumHeight(text->heightForWidth(kPicture.width()));
    text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lines->addWidget(title);
    lines->addWidget(new SlidePicture(slide));
    lines->addWidget(text);
    lines->addStretch(1);
    slides_->addWidget(page);
  }
  form.Wide(slides_, 1);
  form.ButtonsWithoutDefault({previous_ = form.Button("cmdPrevious", tr("Previous"), Qt::Key_PageUp),
                              next_ = form.Button("cmdNext", tr("Next"), Qt::Key_PageDown),
                              form.Button("cmdClose", tr("Close"))});
  next_->setFocus();
}

void ScanningHelpForm::UpdateEnabled() {
  const int at = slides_->currentIndex();
  previous_->setEnabled(at > 0);
  next_->setEnabled(at + 1 < slides_->count());
  setWindowTitle(tr("Barcode Scanning - %1 of %2").arg(at + 1).arg(slides_->count()));
}

void ScanningHelpForm::Turn(int by) {
  slides_->setCurrentIndex(slides_->currentIndex() + by);
  Changed();
}

void ScanningHelpForm::cmdPrevious_Click() {
  Turn(-1);
}

void ScanningHelpForm::cmdNext_Click() {
  Turn(1);
}

}  // namespace vellumark::desktop
