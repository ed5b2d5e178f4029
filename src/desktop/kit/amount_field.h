#pragma once

#include <functional>
#include <string>

#include "core/colors/amounts.h"
#include "desktop/kit/form_host.h"

namespace vellumark::desktop {

/// Makes a field one of a colour's figures: left, it is checked and shown with its decimals (a button that the focus
/// went to checks by itself), and without the right to change it each key is dropped with the reason. `column` is what
/// a refusal calls it; it is checked only while `shown` tells that there is a record.
void MakeAmountField(FormHost& host, NumberField& field, AmountKey key, const std::string& column,
                     std::function<bool()> shown);

/// Without the right to change such a figure the field can only be read, and each key is dropped with the reason. True
/// when the user has the right.
bool KeepToRight(FormHost& host, NumberField& field, AmountKey key, const std::string& column);

}  // namespace vellumark::desktop
