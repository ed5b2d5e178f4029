#include "core/cloud/transfer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "core/base/digest.h"
#include "core/base/files.h"
#include "core/base/text.h"

namespace vellumark {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kPart = ".part";

std::string PartName(const FileProof& proof) {
  return fmt::format("{:016x}-{}{}", proof.digest, proof.bytes, kPart);
}

// The bytes from `from` on, behind what an earlier try has brought up.
void PutRest(CloudRun& run, const std::string& path, std::int64_t size,
             const std::function<FtpClient::Give(std::int64_t from)>& open) {
  std::int64_t have = run.ftp.Size(path).value_or(0);
  if (have > size) have = 0;
  if (have > 0 && have < size) {
    try {
      run.ftp.Put(path, have, size, open(have));
      have = size;
    } catch (const FtpFailure& failure) {
      // Some hosts go on with no file of theirs.
      using enum FtpFailure::Kind;
      if (failure.kind != Denied && failure.kind != Other && failure.kind != Missing) throw;
      run.ftp.Delete(path);
      have = 0;
    }
  }
  if (have == 0) run.ftp.Put(path, 0, size, open(0));
  const std::int64_t arrived = run.ftp.Size(path).value_or(-1);
  if (arrived != size)
    throw FtpFailure(FtpFailure::Kind::Other, path, fmt::format("{} bytes arrived of {}", arrived, size));
}

// Leaves nothing behind when the host has no room or does not want the file: no later try would go on with it.
void RemoveRefused(CloudRun& run, const std::string& path, const FtpFailure& failure) {
  using enum FtpFailure::Kind;
  if (failure.kind != Full && failure.kind != Denied) return;
  try {
    if (run.ftp.Size(path)) run.ftp.Delete(path);
  } catch (const FtpFailure& left) {
    run.Log(fmt::format("Unable to delete remote file {}: {}", path, left.cause));
  }
}

void PutWhole(CloudRun& run, const FileProof& proof, const std::string& folder,
              const std::function<FtpClient::Give(std::int64_t)>& open) {
  const std::string path = RemotePath(folder, PartName(proof));
  try {
    PutRest(run, path, proof.bytes, open);
  } catch (const FtpFailure& failure) {
    RemoveRefused(run, path, failure);
    throw;
  }
}

// What has come of a file so far, by the name that says of which.
fs::path PartOf(const fs::path& target, const RemoteFile& file) {
  fs::path part = target;
  part += fmt::format(".{}-{}{}", file.size, file.date ? CloudStamp(*file.date) : "0", kPart);
  return part;
}

void RemoveOtherParts(const fs::path& target, const fs::path& part) {
  std::error_code error;
  const std::string start = target.filename().string() + ".";
  for (fs::directory_iterator entry(target.parent_path(), error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    std::error_code failed;
    if (name.starts_with(start) && name.ends_with(kPart) && entry->path() != part) fs::remove(entry->path(), failed);
  }
}

// A file at whose end is written. What the disk says is a Failure that names the file.
class PartFile {
 public:
  explicit PartFile(const fs::path& path) : path_(path) {
    std::error_code ignored;
    if (!fs::exists(path, ignored)) ReplaceFile(path, {}, Readers::Group);
    stream_.open(path, std::ios::binary | std::ios::app);
    if (!stream_) Fail();
  }
  void Write(std::string_view piece) {
    stream_.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    if (!stream_) Fail();
  }
  void Close() {
    stream_.close();
    if (!stream_) Fail();
    std::error_code error;
    const platform::OpenFile file = platform::OpenExisting(path_, platform::Opening::Write, error);
    if (!error) error = platform::Sync(file);
    if (error) throw Failure(path_.string(), error.message());
  }

 private:
  [[noreturn]] void Fail() const {
    throw Failure(path_.string(), std::error_code(errno, std::generic_category()).message());
  }
  fs::path path_;
  std::ofstream stream_;
};

}  // namespace

std::string BringUp(CloudRun& run, const fs::path& file, const std::string& folder, const std::string& name,
                    FileProof* told) {
  const FileProof proof = ProveFile(file, name);
  std::ifstream stream;
  run.Step("Unable to upload " + name, [&] {
    PutWhole(run, proof, folder, [&](std::int64_t from) -> FtpClient::Give {
      stream = std::ifstream(file, std::ios::binary);
      stream.seekg(from);
      return [&stream, &file](char* piece, std::size_t size) {
        stream.read(piece, static_cast<std::streamsize>(size));
        if (stream.bad()) throw Failure(file.string(), "cannot be read");
        return static_cast<std::size_t>(stream.gcount());
      };
    });
  });
  if (told != nullptr) *told = proof;
  return PartName(proof);
}

// Not every host renames over a file.
void Place(CloudRun& run, const std::string& folder, const std::string& part, const std::string& name,
           const std::string& cannotDelete) {
  const std::string target = RemotePath(folder, name);
  run.Step("Unable to upload " + name, [&] {
    if (run.ftp.Size(target)) run.Step(cannotDelete + name, [&] { run.ftp.Delete(target); });
    run.ftp.Rename(RemotePath(folder, part), target);
  });
}

FileProof Upload(CloudRun& run, const fs::path& file, const std::string& folder, const std::string& name,
                 const std::string& cannotDelete) {
  FileProof proof;
  const std::string part = BringUp(run, file, folder, name, &proof);
  Place(run, folder, part, name, cannotDelete);
  return proof;
}

void UploadBytes(CloudRun& run, const std::string& bytes, const std::string& folder, const std::string& name,
                 const std::string& cannotDelete) {
  Digest digest;
  digest.Add(std::string_view(bytes));
  const FileProof proof{name, static_cast<std::int64_t>(bytes.size()), digest.Value()};
  run.Step("Unable to upload " + name, [&] {
    PutWhole(run, proof, folder, [&](std::int64_t from) -> FtpClient::Give {
      return [&bytes, at = static_cast<std::size_t>(from)](char* piece, std::size_t size) mutable {
        const std::size_t count = std::min(size, bytes.size() - at);
        bytes.copy(piece, count, at);
        at += count;
        return count;
      };
    });
  });
  Place(run, folder, PartName(proof), name, cannotDelete);
}

void Download(CloudRun& run, const std::string& folder, const RemoteFile& file, const fs::path& target,
              const std::optional<FileProof>& proof) {
  run.Step("Unable to download " + file.name, [&] {
    MakeFolder(target.parent_path());
    const fs::path part = PartOf(target, file);
    RemoveOtherParts(target, part);
    std::error_code ignored;
    std::int64_t have = fs::exists(part, ignored) ? static_cast<std::int64_t>(fs::file_size(part, ignored)) : 0;
    if (have > file.size) {
      fs::remove(part, ignored);
      have = 0;
    }
    PartFile written(part);
    if (have < file.size)
      run.ftp.Get(RemotePath(folder, file.name), have, file.size, [&](std::string_view piece) { written.Write(piece); });
    written.Close();
    const FileProof came = ProveFile(part, file.name);
    if (came.bytes != file.size || (proof && (came.digest != proof->digest || came.bytes != proof->bytes))) {
      fs::remove(part, ignored);
      throw FtpFailure(FtpFailure::Kind::Other, file.name, "what came down is not what went up");
    }
    if (const std::error_code error = platform::Replace(part, target)) throw Failure(target.string(), error.message());
    SyncFolder(target.parent_path());
  });
}

std::string DownloadBytes(CloudRun& run, const std::string& path, std::size_t most) {
  std::string bytes;
  run.ftp.Get(path, 0, 0, [&](std::string_view piece) {
    if (bytes.size() + piece.size() > most) throw FtpFailure(FtpFailure::Kind::Other, path, "is too large");
    bytes += piece;
  });
  return bytes;
}

std::vector<RemoteFile> ListFiles(CloudRun& run, const std::string& folder,
                                  const std::function<bool(const std::string&)>& wanted) {
  std::vector<RemoteFile> files;
  run.RequireFolder(folder);
  run.Step("Unable to connect to remote directory", [&] { files = run.ftp.List(folder); });
  std::erase_if(files, [&](const RemoteFile& file) { return file.folder || !wanted(file.name); });
  std::ranges::sort(files, {}, &RemoteFile::name);
  return files;
}

bool IsPhoto(const std::string& name) {
  return IsPlainName(name) && name.size() > 4 && EqualNoCase(std::string_view(name).substr(name.size() - 4), ".jpg");
}

std::optional<SetProof> FetchProof(CloudRun& run, const std::string& folder, const std::string& name) {
  const std::string path = RemotePath(folder, ProofName(name));
  if (!run.ftp.Size(path)) return std::nullopt;
  std::optional<SetProof> proof;
  run.Step("Unable to download " + ProofName(name), [&] { proof = ReadProofText(DownloadBytes(run, path)); });
  return proof;
}

std::optional<FileProof> ProofOf(const std::vector<FileProof>& files, const std::string& name) {
  const auto found = std::ranges::find(files, name, &FileProof::name);
  return found == files.end() ? std::nullopt : std::optional(*found);
}

void SweepParts(CloudRun& run, const std::string& folder, const std::vector<RemoteFile>& entries) {
  const std::int64_t old = run.session.clock.Now().SecondNumber() - std::int64_t{2} * 86400;
  for (const RemoteFile& entry : entries)
    if (!entry.folder && entry.name.ends_with(kPart) && entry.date && entry.date->SecondNumber() < old)
      run.Step("Unable to delete " + entry.name, [&] { run.ftp.Delete(RemotePath(folder, entry.name)); });
}

}  // namespace vellumark
