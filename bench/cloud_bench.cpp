// What goes to a host of files and comes from it, beside curl's own command line and the same real server: 200 MB up and
// down, and a folder of 1,000 files listed, as hosts with and without listings for machines tell it.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>

#include "core/backup/proof.h"
#include "core/base/seams.h"
#include "devices/ftp_connection.h"
#include "support/ftp_server.h"
#include "support/scratch.h"

namespace vellumark::bench {
namespace {

namespace fs = std::filesystem;
using Moment = std::chrono::steady_clock;

constexpr std::int64_t kBytes = 200 << 20;
constexpr int kFiles = 1000;

test::FtpServer::Options Hosting(bool machineListing) {
  test::FtpServer::Options options;
  if (!machineListing) options.more = "<Limit MLSD MLST>\nDenyAll\n</Limit>";
  return options;
}

struct Host {
  explicit Host(bool machineListing = true) : server(Hosting(machineListing)) {}

  void Connect() {
    FtpHost host;
    host.host = server.Host();
    host.port = server.Port();
    host.user = "shop";
    host.password = "se cret#1";
    host.certFile = server.Certificate();
    ftp->Connect(host, progress);
  }
  std::string Url(const std::string& name) const {
    return " 'ftp://" + server.Host() + ":" + std::to_string(server.Port()) + "/" + name + "'";
  }
  void Curl(const std::string& words) const {
    const std::string command = "curl --silent --show-error --ssl-reqd --cacert '" + server.Certificate().string() +
                                "' --user 'shop:se cret#1' " + words;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("curl failed");
  }

  test::FtpServer server;
  test::ScratchFolder here;
  SystemClock clock;
  NoProgress progress;
  std::unique_ptr<FtpClient> ftp = devices::FtpConnection(clock);
};

// 200 MB that nothing can pack.
FileProof Fill(const fs::path& path) {
  std::mt19937_64 random(20260310);
  std::ofstream out(path, std::ios::binary);
  std::vector<std::uint64_t> words((1 << 20) / sizeof(std::uint64_t));
  for (std::int64_t at = 0; at < kBytes; at += 1 << 20) {
    for (std::uint64_t& word : words) word = random();
    out.write(reinterpret_cast<const char*>(words.data()), 1 << 20);
  }
  out.close();
  return ProveFile(path, "file");
}

void Same(benchmark::State& state, const fs::path& path, const FileProof& proof) {
  if (ProveFile(path, "file") != proof) state.SkipWithError("what arrived is not what was sent");
}

void PutOurs(benchmark::State& state) {
  Host host;
  const fs::path from = host.here / "file";
  const FileProof proof = Fill(from);
  for (auto unused : state) {
    std::ifstream in(from, std::ios::binary);
    host.Connect();
    host.ftp->Put("/file", 0, kBytes, [&](char* piece, std::size_t size) {
      in.read(piece, static_cast<std::streamsize>(size));
      return static_cast<std::size_t>(in.gcount());
    });
    host.ftp->Disconnect();
    state.PauseTiming();
    Same(state, host.server.Root() / "file", proof);
    fs::remove(host.server.Root() / "file");
    state.ResumeTiming();
  }
}

void PutRaw(benchmark::State& state) {
  const Host host;
  const fs::path from = host.here / "file";
  const FileProof proof = Fill(from);
  for (auto unused : state) {
    host.Curl("-T '" + from.string() + "'" + host.Url("file"));
    state.PauseTiming();
    Same(state, host.server.Root() / "file", proof);
    fs::remove(host.server.Root() / "file");
    state.ResumeTiming();
  }
}

void GetOurs(benchmark::State& state) {
  Host host;
  const FileProof proof = Fill(host.server.Root() / "file");
  host.server.Own();
  for (auto unused : state) {
    std::ofstream out(host.here / "came", std::ios::binary);
    host.Connect();
    host.ftp->Get("/file", 0, kBytes, [&](std::string_view piece) {
      out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    });
    host.ftp->Disconnect();
    out.close();
    state.PauseTiming();
    Same(state, host.here / "came", proof);
    fs::remove(host.here / "came");
    state.ResumeTiming();
  }
}

void GetRaw(benchmark::State& state) {
  const Host host;
  const FileProof proof = Fill(host.server.Root() / "file");
  host.server.Own();
  for (auto unused : state) {
    host.Curl("-o '" + (host.here / "came").string() + "'" + host.Url("file"));
    state.PauseTiming();
    Same(state, host.here / "came", proof);
    fs::remove(host.here / "came");
    state.ResumeTiming();
  }
}

void FillFolder(const test::FtpServer& server) {
  for (int n = 0; n < kFiles; ++n)
    std::ofstream(server.Root() / ("INKROOM-0001_Backup_03_10_2026_" + std::to_string(n) + " Größe.vkd")) << n;
  server.Own();
}

void ListOurs(benchmark::State& state, bool machineListing) {
  Host host(machineListing);
  FillFolder(host.server);
  host.Connect();
  double best = 1e9;
  for (auto unused : state) {
    const auto begin = Moment::now();
    const std::vector<RemoteFile> files = host.ftp->List("/");
    best = std::min(best, std::chrono::duration<double>(Moment::now() - begin).count());
    if (files.size() != kFiles) state.SkipWithError("not all files are listed");
    for (const RemoteFile& file : files)
      if (!file.date || file.size == 0 || !file.name.ends_with(" Größe.vkd")) state.SkipWithError("a file is not as it is");
  }
  state.counters["ms"] = best * 1000;
}

void ListRaw(benchmark::State& state, bool machineListing) {
  const Host host(machineListing);
  FillFolder(host.server);
  const std::string words = "-o '" + (host.here / "list").string() + "'" + (machineListing ? " -X MLSD" : "");
  for (auto unused : state) host.Curl(words + host.Url(""));
}

BENCHMARK(PutOurs)->Name("ftp_put_200mb/ours")->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(PutRaw)->Name("ftp_put_200mb/raw")->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(GetOurs)->Name("ftp_get_200mb/ours")->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(GetRaw)->Name("ftp_get_200mb/raw")->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK_CAPTURE(ListOurs, mlsd, true)
    ->Name("ftp_list_1k_mlsd/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(ListRaw, mlsd, true)
    ->Name("ftp_list_1k_mlsd/raw")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(ListOurs, unix, false)
    ->Name("ftp_list_1k_unix/ours")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();
BENCHMARK_CAPTURE(ListRaw, unix, false)
    ->Name("ftp_list_1k_unix/raw")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseRealTime();

}  // namespace
}  // namespace vellumark::bench
