#pragma once

#include "core/datafile/engine.h"

namespace vellumark {

/// Puts the counters of `file` (Batch numbers, item numbers, the lot references of each colour that both have) up to
/// those of `other`, which is to be replaced by it, where those are further on: no number that stands on paper or on a label is
/// handed out a second time. In one transaction.
void RaiseCounters(Database& file, Database& other);

}  // namespace vellumark
