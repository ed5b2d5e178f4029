#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/backup/proof.h"
#include "core/cloud/cloud_run.h"

namespace vellumark {

// Files between this machine and the host. Nothing bears its name before it is whole, at either end: what is under way
// has a name made of what it holds, so that the next try goes on where a broken one stopped.

/// A file of this machine under a name at the host, in the place of what bears it. `cannotDelete` begins the line of the
/// log when that cannot be removed. The digest of what went up.
FileProof Upload(CloudRun& run, const std::filesystem::path& file, const std::string& folder, const std::string& name,
                 const std::string& cannotDelete);
/// The same in two steps: the name under which it stands at the host until it gets its own.
std::string BringUp(CloudRun& run, const std::filesystem::path& file, const std::string& folder, const std::string& name,
                    FileProof* proof = nullptr);
void Place(CloudRun& run, const std::string& folder, const std::string& part, const std::string& name,
           const std::string& cannotDelete);
void UploadBytes(CloudRun& run, const std::string& bytes, const std::string& folder, const std::string& name,
                 const std::string& cannotDelete);

/// A file of the host in the place of `target`, once it is whole and, with a proof, what went up.
void Download(CloudRun& run, const std::string& folder, const RemoteFile& file, const std::filesystem::path& target,
              const std::optional<FileProof>& proof = {});
std::string DownloadBytes(CloudRun& run, const std::string& path, std::size_t most = 4U << 20);

/// The files of a folder for which `wanted` holds, by name.
std::vector<RemoteFile> ListFiles(CloudRun& run, const std::string& folder,
                                  const std::function<bool(const std::string&)>& wanted);
bool IsPhoto(const std::string& name);

/// The proof that stands beside a file at the host; nothing where an older program put the file there.
std::optional<SetProof> FetchProof(CloudRun& run, const std::string& folder, const std::string& name);
std::optional<FileProof> ProofOf(const std::vector<FileProof>& files, const std::string& name);

/// Removes what broken transfers of more than a day ago left in a folder of the host.
void SweepParts(CloudRun& run, const std::string& folder, const std::vector<RemoteFile>& entries);

}  // namespace vellumark
