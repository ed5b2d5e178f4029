#pragma once

#include <utility>
#include <vector>

#include "desktop/kit/form.h"

namespace vellumark::desktop {

/// A title and the steps that it tells.
using HintPage = std::pair<QString, QString>;
/// Tabs of texts to be read.
void AddHintPages(Form& form, const QString& name, const std::vector<HintPage>& pages);

}  // namespace vellumark::desktop
