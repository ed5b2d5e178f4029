#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/datafile/engine.h"

namespace vellumark {

// `MSysSentFiles`: which files for dispensers were written by a Batch that was not stored at that time. It has a number in
// common with whatever Batch is made after it was given up, so that its file is not the next one's to replace. Batches
// without a stored row are told apart by numbers of their own.

std::optional<std::int32_t> UnsavedSenderOf(Database& file, const std::string& path);
/// Notes that this Batch has written the file; its number, a new one where `sender` is 0.
std::int32_t NoteUnsavedSender(Database& file, const std::string& path, std::int32_t sender);
/// The file is that of a stored Batch.
void ForgetSentFile(Database& file, const std::string& path);
/// The Batch is stored: all its files are its own. Within the transaction of the save.
void ForgetUnsavedSender(Database& file, std::int32_t sender);

}  // namespace vellumark
