#include "bench/fuzz/fuzz_files.h"

#include <fcntl.h>
#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "vdstomgr/platform/os/file.h"
#include "vdstomgr/platform/report/hooks.h"

namespace fuzz {
namespace {

namespace fs = std::filesystem;
namespace os = vdstomgr::os;

constexpr std::uint64_t kLargestFile = std::uint64_t{512} << 20;

class GuardedMapping final : public os::Mapping {
 public:
  GuardedMapping(BYTE* data, std::size_t size) : Mapping(data, size) {
    ASAN_POISON_MEMORY_REGION(data + size, Slack());
  }
  ~GuardedMapping() override {
    ASAN_UNPOISON_MEMORY_REGION(Data() + Size(), Slack());
    munmap(Data(), Size());
  }
  std::error_code Flush(std::size_t, std::size_t, os::FlushDepth) override { return {}; }

 private:
  std::size_t Slack() const {
    const auto page = static_cast<std::size_t>(os::MapGranularity());
    return (page - Size() % page) % page;
  }
};

class SparseFile final : public os::ForwardingExclusiveFile {
 public:
  SparseFile(std::unique_ptr<os::ExclusiveFile> target, const std::string& path)
      : ForwardingExclusiveFile(std::move(target)), descriptor_(open(path.c_str(), O_RDWR)) {}
  ~SparseFile() override { close(descriptor_); }

  std::error_code SetSize(std::uint64_t size) override {
    if (size > kLargestFile || ftruncate(descriptor_, static_cast<off_t>(size)) != 0) {
      return std::make_error_code(std::errc::no_space_on_device);
    }
    return {};
  }
  std::error_code Map(std::uint64_t offset, std::uint64_t size, os::Paging,
                      std::unique_ptr<os::Mapping>& mapping) override {
    std::uint64_t end = 0;
    if (const auto error = Size(end)) return error;
    Require(size != 0 && offset <= end && size <= end - offset, "mapping what the file has");
    void* const data =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, off_t(offset));
    if (data == MAP_FAILED) return std::make_error_code(std::errc::not_enough_memory);
    mapping = std::make_unique<GuardedMapping>(static_cast<BYTE*>(data), size);
    return {};
  }
  std::error_code Sync() override { return {}; }

 private:
  int descriptor_;
};

class SparseFiles final : public os::ForwardingFileSystem {
 public:
  SparseFiles() : ForwardingFileSystem(os::SystemFiles()) {}

  std::error_code OpenExclusive(const std::string& path, os::Caching caching,
                                std::unique_ptr<os::ExclusiveFile>& file) override {
    return Wrap(ForwardingFileSystem::OpenExclusive(path, caching, file), path, file);
  }
  std::error_code CreateNew(const std::string& path, os::Caching caching,
                            std::unique_ptr<os::ExclusiveFile>& file) override {
    return Wrap(ForwardingFileSystem::CreateNew(path, caching, file), path, file);
  }

 private:
  static std::error_code Wrap(std::error_code error, const std::string& path,
                              std::unique_ptr<os::ExclusiveFile>& file) {
    if (!error) file = std::make_unique<SparseFile>(std::move(file), path);
    return error;
  }
};

}  // namespace

const Playground& Playground::Get() {
  static const Playground playground;
  return playground;
}

Playground::Playground()
    : folder_(fs::temp_directory_path() / ("vdsto-fuzz-" + std::to_string(getpid()))) {
  static SparseFiles files;
  os::SetFiles(&files);
  vdstomgr::SetMessageBoxHandler([](const char*) {});
  vdstomgr::SetTraceHandler([](const char*) {});
  fs::create_directories(folder_);
}

Playground::~Playground() {
  fs::remove_all(folder_);
}

void Playground::Clear() const {
  for (const auto& entry : fs::directory_iterator(folder_)) fs::remove(entry);
}

void Playground::Write(const char* name, std::span<const BYTE> content) const {
  std::ofstream file(Path(name), std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), std::ssize(content));
}

Bytes Playground::Read(const char* name, std::size_t size) const {
  Bytes content(std::min<std::size_t>(size, fs::file_size(Path(name))));
  std::ifstream file(Path(name), std::ios::binary);
  file.read(reinterpret_cast<char*>(content.data()), std::ssize(content));
  return content;
}

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "fuzz: does not hold: %s\n", what);
  std::abort();
}

unsigned Touch(const void* data, std::size_t size) {
  unsigned sum = 0;
  for (const BYTE byte : std::span(static_cast<const BYTE*>(data), size)) sum += byte;
  return sum;
}

}  // namespace fuzz
