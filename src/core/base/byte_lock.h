#pragma once

namespace vellumark {

/// What a byte far behind the first of a file stands for when it is locked; nothing is read or written there.
enum class LockedByte {
  DataFile,  ///< somebody has the Data File open to work in it
  Beside,    ///< the file is being written, and will take another's place
};

/// Locks the byte in a file that is open for writing, without waiting; false when it is locked already. The lock belongs
/// to the descriptor and goes with it: this process may close any other descriptor of the file, by which it would lose
/// the engine's locks. It keeps clear of the bytes that the engine locks, so that on network drives, where all kinds of
/// locks are one, nobody keeps himself out. Where a file system knows no locks it holds nobody off.
bool TakeByteLock(int descriptor, LockedByte byte);

/// Whether anybody has it through another descriptor.
bool IsByteLocked(int descriptor, LockedByte byte);

}  // namespace vellumark
