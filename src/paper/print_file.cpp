#include "paper/print_file.h"

#include "core/base/text.h"
#include "paper/pdf.h"
#include "paper/print_options.h"

namespace vellumark::paper {

int PrintToFile(Session& session, const Sheet& sheet, const PaperWish& wish, const std::filesystem::path& file) {
  const OffscreenFonts fonts;
  PageOptions options = OptionsOf(session);
  if (!wish.paper.empty()) options.paper = EqualNoCase(wish.paper, "Letter") ? QPageSize::Letter : QPageSize::A4;
  options.landscape = wish.landscape;
  options.fontPercent = wish.fontPercent;
  SheetLayout layout(sheet, options, session.progress);
  if (layout.Cancelled() || !AskAboutFit(session, layout)) return 0;
  return WritePdf(file, sheet.title, layout, session.progress);
}

}  // namespace vellumark::paper
