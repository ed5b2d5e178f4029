#include "desktop/labels/label_papers.h"

#include <QPageSize>
#include <QPrinterInfo>

#include "core/labels/label_drawing.h"
#include "desktop/kit/text.h"

namespace vellumark::desktop {
namespace {

void Add(std::vector<PrinterPaper>& papers, const QPageSize& page) {
  const std::string name = CleanUpPaperType(U8(page.name()));
  if (page.isValid() && !name.empty()) papers.push_back({name, page.windowsId() > 0 ? page.windowsId() : page.id()});
}

}  // namespace

std::vector<PrinterPaper> PapersOfPrinter(const std::string& device) {
  std::vector<PrinterPaper> papers;
  if (!device.empty())
    for (const QPageSize& page : QPrinterInfo::printerInfo(Q(device)).supportedPageSizes()) Add(papers, page);
  if (!papers.empty()) return papers;
  for (int id = 0; id < QPageSize::LastPageSize; ++id)
    if (id != QPageSize::Custom) Add(papers, QPageSize(static_cast<QPageSize::PageSizeId>(id)));
  return papers;
}

}  // namespace vellumark::desktop
