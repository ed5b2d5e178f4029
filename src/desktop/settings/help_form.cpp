#include "desktop/settings/help_form.h"

#include <QImage>
#include <QListWidget>
#include <QSplitter>
#include <QTextBrowser>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "desktop/kit/look.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

struct Page {
  const char* file;
  const char* title;
};

constexpr std::array<Page, 11> kPages{{
    {"index", QT_TRANSLATE_NOOP("HelpForm", "First steps")},
    {"batch", QT_TRANSLATE_NOOP("HelpForm", "Batches")},
    {"colors", QT_TRANSLATE_NOOP("HelpForm", "Colors and formulas")},
    {"stock", QT_TRANSLATE_NOOP("HelpForm", "Stock")},
    {"jobs", QT_TRANSLATE_NOOP("HelpForm", "Jobs and Designs")},
    {"labels", QT_TRANSLATE_NOOP("HelpForm", "Labels and scanning")},
    {"reports", QT_TRANSLATE_NOOP("HelpForm", "Lists, finding, reports")},
    {"files", QT_TRANSLATE_NOOP("HelpForm", "Files, Databases, users")},
    {"cloud", QT_TRANSLATE_NOOP("HelpForm", "The cloud")},
    {"keys", QT_TRANSLATE_NOOP("HelpForm", "Keys")},
    {"updates", QT_TRANSLATE_NOOP("HelpForm", "Updates")},
}};

// Pieces of the names of windows; the first that fits tells the page.
constexpr std::array<std::pair<std::string_view, const char*>, 48> kPagesOfWindows{{
    {"Cloud", "cloud"},         {"port_Formulas", "colors"},
    {"LotInv", "stock"},        {"ReportExport", "reports"},
    {"ReportN", "reports"},     {"ReportsForm", "reports"},
    {"Inventory", "stock"},     {"Reorder", "stock"},
    {"StockHistory", "stock"},  {"ResetInv", "stock"},
    {"InvLot", "stock"},        {"Calendar", "stock"},
    {"Label", "labels"},        {"Scanning", "labels"},
    {"Export", "jobs"},         {"Job", "jobs"},
    {"Design", "jobs"},         {"InkEst", "jobs"},
    {"BatchesList", "reports"}, {"ListForm", "reports"},
    {"Find", "reports"},        {"PrintBox", "reports"},
    {"ViewRecord", "reports"},  {"Production", "reports"},
    {"Consumption", "reports"}, {"Summary", "reports"},
    {"Cost", "batch"},          {"Scale", "batch"},
    {"Dispenser", "batch"},     {"Batch", "batch"},
    {"Addition", "batch"},      {"AdjustMix", "batch"},
    {"AdjustBasic", "batch"},   {"MoreData", "batch"},
    {"VOC_HAP_Calc", "batch"},  {"VKD_File", "files"},
    {"Backup", "files"},        {"Restore", "files"},
    {"File", "files"},          {"DBForm", "files"},
    {"Databases", "files"},     {"User", "files"},
    {"Password", "files"},      {"Login", "files"},
    {"Admin", "files"},         {"Form", "colors"},
    {"DB", "colors"},           {"Reset", "colors"},
}};

constexpr const char* kFolder = "qrc:/docs/manual/";
constexpr int kPictureWidth = 600;

/// Pictures as wide as the page.
class Manual : public QTextBrowser {
 public:
  QVariant loadResource(int type, const QUrl& name) override {
    if (type != QTextDocument::ImageResource) return QTextBrowser::loadResource(type, name);
    const QImage picture(":" + source().resolved(name).path());
    return picture.width() > kPictureWidth ? picture.scaledToWidth(kPictureWidth, Qt::SmoothTransformation) : picture;
  }
};

}  // namespace

QString HelpPageOf(const std::string& window) {
  static constexpr std::array<std::string_view, 5> kOptions{"AutofillForm", "RemindersForm", "UMSettingForm",
                                                            "UnitCostAccuracyForm", "NewSetupForm"};
  if (std::ranges::find(kOptions, window) != kOptions.end()) return "files";
  if (window == "AboutForm" || window == "HelpForm" || window == "MainForm") return "index";
  for (const auto& [piece, page] : kPagesOfWindows)
    if (window.find(piece) != std::string::npos) return page;
  return "index";
}

HelpForm::HelpForm(WindowList& windowList, QWidget* owner) : Dialog(windowList, owner, "HelpForm", tr("Help")) {
  Form form(*this);
  auto* sides = new QSplitter(Qt::Horizontal);
  sides->setObjectName("HelpSides");
  sides->setChildrenCollapsible(false);
  pages_ = new QListWidget;
  pages_->setObjectName("lstPages");
  pages_->setAccessibleName(tr("Pages"));
  for (const Page& page : kPages) {
    auto* item = new QListWidgetItem(tr(page.title), pages_);
    item->setData(Qt::UserRole, QString(page.file));
  }
  text_ = new Manual;
  text_->setObjectName("txtHelp");
  text_->setAccessibleName(tr("Help"));
  text_->setOpenExternalLinks(true);
  text_->setFrameShape(QFrame::NoFrame);
  text_->document()->setDocumentMargin(space::kGap);
  sides->addWidget(pages_);
  sides->addWidget(text_);
  sides->setStretchFactor(0, 0);
  sides->setStretchFactor(1, 1);
  sides->setSizes({220, 660});
  form.Wide(sides, 1);
  form.Buttons({form.Button("cmdClose", tr("Close"))});
  connect(pages_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
    if (item != nullptr) Show(item->data(Qt::UserRole).toString());
  });
  // A link leads to another page: the list follows.
  connect(text_, &QTextBrowser::sourceChanged, this, [this](const QUrl& url) {
    for (int row = 0; row < pages_->count(); ++row)
      if (url.fileName() == pages_->item(row)->data(Qt::UserRole).toString() + ".md") pages_->setCurrentRow(row);
  });
  resize(920, 600);
}

void HelpForm::OnOpen(const Arguments& arguments) {
  QString page = "index";
  if (arguments.Has("Page")) page = Q(arguments.Text("Page"));
  if (arguments.Has("Window")) page = HelpPageOf(arguments.Text("Window"));
  Show(page);
  text_->setFocus();
}

void HelpForm::Show(const QString& page) {
  const QUrl url(kFolder + page + ".md");
  if (text_->source() != url) text_->setSource(url, QTextDocument::MarkdownResource);
}

}  // namespace vellumark::desktop
