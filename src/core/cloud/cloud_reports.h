#pragma once

#include <string_view>
#include <vector>

#include "core/cloud/cloud_run.h"
#include "core/reports/definition.h"

namespace vellumark {

/// The reports of what other shops have in stock, over the share files that were fetched last: of all colours, and of
/// one. Quantities and prices are told in this shop's unit; a row tells the account, its Database, the day on which it
/// was shared, and when it could not be fetched the last time.
const std::vector<ReportDefinition>& CloudReports();
/// All of the catalogue, and these behind them.
std::vector<const ReportDefinition*> AllReports();
/// One of them by its key or its window; nullptr when there is none.
const ReportDefinition* FindAnyReport(std::string_view key);
/// The task that fetches what such a report is made of; nothing for a report of this shop.
std::optional<CloudTask> FetchTaskOf(const ReportDefinition& report);

}  // namespace vellumark
