#pragma once

#include "desktop/kit/window_list.h"

namespace vellumark::desktop {

class BenchScale;

/// The Batch Window and everything that it opens.
void RegisterBatchWindows(WindowList& windows);

/// BatchScaleWeighForm, beside the Batch Window.
void RegisterWeighing(WindowList& windows, BenchScale& scale);

/// The windows around the Batch Window; a part of RegisterBatchWindows. What they take and give:
///
///   CostInfForm              {"Record", BatchRecord*}: shows its costs, changes its cost model by CostModelForm; the
///                            record may have another one however the window was left
///   CostModelForm            {"Record", BatchRecord*}: changes its cost model
///   VOC_HAP_CalcForm         {"Record", BatchRecord*}: changes its emission models
///   MoreDataForm             {"Record", BatchRecord*}: changes its user-defined fields and lab values
///   SaveModifiedBatch        {"Record", const BatchRecord*}; gives {"Choice", ModifiedBatchChoice}
///   BatchFormLotNumReminder  nothing; gives {"Answer", LotReminderAnswer}
///   BatchSettingsForm        nothing; tells of what it stored as a change of Settings
///   RecentBatchesForm        nothing; gives {"BatchNo", number}
///   ViewBatchForm            a child window; {"BatchNo", number}
///
/// The record belongs to the caller, who waits until the dialog closes; any other dialog that
/// gives nothing back was cancelled and has changed nothing. BatchWindowDialogs (batch_window_dialogs.h) runs the two
/// that a save asks for.
void RegisterBatchSideWindows(WindowList& windows);

}  // namespace vellumark::desktop
