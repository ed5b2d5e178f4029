#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "core/base/date.h"
#include "core/colors/name_search.h"
#include "desktop/kit/fields.h"
#include "desktop/kit/name_box.h"
#include "desktop/kit/window.h"

namespace vellumark::desktop {

// What the windows that show a record of a colour do alike.

/// Puts what is on file into a field, as clean. `keepTyped` leaves alone what the operator has changed.
void Put(TextField& field, std::string_view text, bool keepTyped);
void Put(NumberField& field, std::string_view text, bool keepTyped);
void Put(NoteField& field, std::string_view text, bool keepTyped);
void Put(CheckField& field, bool checked, bool keepTyped);

/// As the locale writes it; a dash when there is none.
QString DateText(const std::optional<DateTime>& date);
/// The same with the time of day.
QString MomentText(const std::optional<DateTime>& date);

/// Names of the current Database, asked for one by one.
NameSource NamesOnFile(const Session& session, NameKind kind);

/// Basic Colors and formulas together.
NameSource ColorsOnFile(const Session& session);

/// The box of a record's colour, by which the record is looked up.
NameBox* ColorNameBox(Form& form, const NameSource& names);

/// Leads to what is told of a colour below its reorder point; hidden until there is one.
CommandButton* LowStockLink(Form& form);

/// Answers the operator who types the word PANTONE before a number.
void HintAtPantone(NameBox& name, Session& session);

/// The operator goes on from a field to another one of its window: what was typed is checked. A button that takes the
/// focus checks by itself, and what leads out of the window waits.
bool GoesOnWithin(const FormHost& host, const QWidget* to);

/// The focus may go to this control without the name counting as entered.
bool LeavesNameAlone(const QWidget& to);

/// Calls `activated` whenever the focus has come into the window from elsewhere.
void OnActivation(Window& window, std::function<void()> activated);

/// While the Batch Window has a recipe in edit, tells so with that warning and brings it forward; true when it did.
bool StandBackForBatch(Window& window, const QString& warning);

}  // namespace vellumark::desktop
