#include "desktop/colors/print_card.h"

#include "core/colors/color_sheets.h"
#include "desktop/kit/print_items.h"

namespace vellumark::desktop {

void PrintCard(WindowList& windows, ColorKind kind, const std::string& name) {
  Session& session = windows.session;
  PrintSheet(windows, {.names = CardItems(kind),
                       .isOn = [&](std::size_t item) { return GetSetting(session, CardItemSetting(kind, item)); },
                       .set = [&](std::size_t item,
                                  bool on) { StoreSettings(session, {CardItemSetting(kind, item).To(on)}); },
                       .make =
                           [&] {
                             return kind == ColorKind::Mix ? FormulaSheet(session, ReadMix(session, name).value())
                                                           : BasicColorSheet(session, ReadBasic(session, name).value());
                           }});
}

}  // namespace vellumark::desktop
