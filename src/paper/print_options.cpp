#include "paper/print_options.h"

#include <fmt/format.h>

#include "core/shell/opening.h"

namespace vellumark::paper {

PageOptions OptionsOf(const Session& session) {
  PageOptions options;
  const QLocale locale;
  options.locale = locale.language() == QLocale::C ? QLocale::c() : locale;
  options.paper = PaperOf(locale);
  if (!session.PrinterFont.empty()) options.family = Q(session.PrinterFont);
  options.caption = Q(VersionCaption() + "   -   " + session.DataFileName);
  options.database = Q(session.CurrentDatabase);
  options.trademark = Q(session.TradeMark);
  options.printed = session.clock.Now();
  return options;
}

bool AskAboutFit(Session& session, SheetLayout& layout) {
  const PageFit& fit = layout.Fitting();
  if (!fit.asks || !layout.Options().fitToPage) return true;
  const Message question{
      .title = "Spread Report over Multiple Pages?",
      .text = fmt::format("Choose Yes to print data over multiple pages. Text will display with size 12 pt.\n\n"
                          "Choose No to print data on a single page width. Text will display with size {} pt.\n\n"
                          "Selecting less data improves readability when printing to a single page width.\n"
                          "Choose Cancel to reselect data.",
                          fit.size),
      .buttons = Buttons::YesNoCancel,
      .icon = Icon::Question,
      .defaultAnswer = Answer::Yes};
  switch (session.prompt.Show(question)) {
    case Answer::Yes:
    case Answer::Ok:
      layout.Spread();
      return true;
    case Answer::No:
      break;
    case Answer::Cancel:
      return false;
  }
  if (fit.size > 0) return true;
  session.prompt.Tell("Print Canceled", fmt::format("Can't print font size: {}", fit.size));
  return false;
}

}  // namespace vellumark::paper
