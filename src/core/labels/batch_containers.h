#pragma once

#include <vector>

#include "core/labels/label_data.h"

namespace vellumark {

/// The labels of the containers that a stored Batch was poured into, numbered "1 of 3": one for each job that got of
/// it, one for each container of its lot, or one for what went to Unlotted Inventory. Containers that share an id, or
/// have none, are counted through as new lots are. One label of a Batch of which nothing is known; none when it is
/// gone.
std::vector<LabelData> LabelsOfContainers(Session& session, std::int32_t batchNo);

}  // namespace vellumark
