#include "support/sound.h"

#include <algorithm>
#include <stdexcept>

#include "core/datafile/file_kind.h"
#include "core/datafile/lifecycle.h"

namespace vellumark::test {

namespace {

constexpr int kMostLines = 10;

}  // namespace

void SoundAtEnd::Breaks(std::string_view rule) {
  const auto is = [&](const CheckRule& known) { return known.name == rule; };
  if (std::ranges::none_of(CheckRules(), is)) throw std::logic_error("no rule " + std::string(rule));
  broken_.emplace(rule);
}

void SoundAtEnd::Expect(Session& session, CheckState state) const {
  if (testing::Test::HasFailure()) return;  // the first cause tells more
  std::string text;
  int lines = 0;
  for (const CheckFault& fault : CheckDataFileRules(session, CheckDepth::Deep, state).faults)
    if (!broken_.contains(fault.rule) && ++lines <= kMostLines) text += "\n" + FaultText(fault);
  EXPECT_EQ(lines, 0) << "not sound:" << text;
}

void SoundAtEnd::ExpectFile(const std::filesystem::path& path) const {
  if (testing::Test::HasFailure() || broken_.contains("Structure")) return;
  ScriptedPrompt prompt;
  NoProgress progress;
  FixedClock clock{DateTime{2026, 3, 10, 12, 0, 0}};
  Session session{prompt, progress, clock};
  try {
    const DataFileKind kind = LookAtDataFile(path);
    if (kind.jet || GateOf(kind.version) != VersionGate::Current) return;
    session.DataFileDB = Database::Open(path, OpenMode::Exclusive);
    SCOPED_TRACE(path);
    Expect(session, CheckState::Closed);
  } catch (const Failure& failure) {
    ADD_FAILURE() << failure.subject << " " << failure.cause;
  }
}

SoundFolder::~SoundFolder() {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(Path()))
    if (entry.is_regular_file() && entry.path().extension() == ".vkd") sound_.ExpectFile(entry.path());
}

}  // namespace vellumark::test
