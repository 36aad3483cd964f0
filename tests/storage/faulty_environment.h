#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "vdstomgr/platform/os/file.h"

namespace vdstomgr::os {

/// A file system in force for as long as it lives, whose calls fail on demand and that can lose
/// what was not synced, as a power cut does.
class FaultyFiles : public ForwardingFileSystem {
 public:
  FaultyFiles() : ForwardingFileSystem(SystemFiles()) { SetFiles(this); }
  ~FaultyFiles() override { SetFiles(nullptr); }

  /// Lets the call with this number (the first is 1), or all from it on, fail. A failing write
  /// writes its first half.
  void FailAt(int call, bool from_then_on) {
    calls_ = 0;
    fail_at_ = call;
    from_then_on_ = from_then_on;
  }
  void Heal() { FailAt(0, false); }
  /// Lets the process end at the call with this number, as if it were killed there.
  void DieAt(int call) {
    FailAt(call, false);
    dies_ = true;
  }
  bool HasFailed() const { return fail_at_ > 0 && calls_ >= fail_at_; }

  /// Maps of more bytes find no room in the address space.
  std::uint64_t address_space = ~std::uint64_t{0};

  /// Puts every file that was opened back to what its last Sync made safe. All must be closed.
  void LoseUnsynced() {
    for (const auto& [path, content] : contents_) {
      std::unique_ptr<ExclusiveFile> file;
      content->ready = content->safe;
      if (ForwardingFileSystem::OpenExclusive(path, Caching::normal, file)) continue;
      (void)file->SetSize(content->safe.size());
      (void)file->WriteAt(0, content->safe.data(), content->safe.size());
    }
  }

  std::error_code OpenExclusive(const std::string& path, Caching caching,
                                std::unique_ptr<ExclusiveFile>& file) override {
    if (Fails()) return Error();
    const auto error = ForwardingFileSystem::OpenExclusive(path, caching, file);
    if (error) return error;
    auto& content = contents_[path];
    if (content == nullptr) {  // it was there before: safe as it is
      std::uint64_t size = 0;
      std::size_t count = 0;
      content = std::make_shared<Content>();
      (void)file->Size(size);
      content->ready.resize(static_cast<std::size_t>(size));
      (void)file->ReadAt(0, content->ready.data(), content->ready.size(), count);
      content->safe = content->ready;
    }
    file = std::make_unique<FaultyFile>(*this, content, std::move(file));
    return {};
  }
  std::error_code CreateNew(const std::string& path, Caching caching,
                            std::unique_ptr<ExclusiveFile>& file) override {
    if (Fails()) return Error();
    const auto error = ForwardingFileSystem::CreateNew(path, caching, file);
    if (error) return error;
    contents_[path] = std::make_shared<Content>();
    file = std::make_unique<FaultyFile>(*this, contents_[path], std::move(file));
    return {};
  }
  std::error_code Delete(const std::string& path) override {
    return Fails() ? Error() : ForwardingFileSystem::Delete(path);
  }
  std::error_code Rename(const std::string& from, const std::string& to) override {
    const auto error = Fails() ? Error() : ForwardingFileSystem::Rename(from, to);
    if (!error && contents_.count(from) != 0) contents_[to] = contents_.extract(from).mapped();
    return error;
  }
  std::error_code SyncNames(const std::string& path) override {
    return Fails() ? Error() : ForwardingFileSystem::SyncNames(path);
  }

 private:
  struct Content {
    std::vector<BYTE> ready;  ///< safe at the next Sync
    std::vector<BYTE> safe;

    void Put(std::uint64_t offset, const void* data, std::size_t size) {
      const auto at = static_cast<std::size_t>(offset);
      ready.resize(std::max(ready.size(), at + size));
      std::copy_n(static_cast<const BYTE*>(data), size, ready.data() + at);
    }
  };

  struct FaultyMapping : Mapping {
    FaultyMapping(FaultyFiles& owner, std::shared_ptr<Content> its_content, std::uint64_t offset,
                  std::unique_ptr<Mapping> its_target)
        : Mapping(its_target->Data(), its_target->Size()),
          files(owner),
          content(std::move(its_content)),
          file_offset(offset),
          target(std::move(its_target)) {}

    std::error_code Flush(std::size_t offset, std::size_t size, FlushDepth depth) override {
      if (files.Fails()) return Error();
      if (depth == FlushDepth::durable) content->Put(file_offset + offset, Data() + offset, size);
      return target->Flush(offset, size, depth);
    }

    FaultyFiles& files;
    std::shared_ptr<Content> content;
    std::uint64_t file_offset;
    std::unique_ptr<Mapping> target;
  };

  struct FaultyFile : ForwardingExclusiveFile {
    FaultyFile(FaultyFiles& owner, std::shared_ptr<Content> its_content,
               std::unique_ptr<ExclusiveFile> target)
        : ForwardingExclusiveFile(std::move(target)),
          files(owner),
          content(std::move(its_content)) {}

    std::error_code WriteAt(std::uint64_t offset, const void* data, std::size_t size) override {
      const bool fails = files.Fails();
      if (fails) size /= 2;
      content->Put(offset, data, size);
      const auto error = ForwardingExclusiveFile::WriteAt(offset, data, size);
      return fails ? Error() : error;
    }
    std::error_code Size(std::uint64_t& size) override {
      return files.Fails() ? Error() : ForwardingExclusiveFile::Size(size);
    }
    std::error_code Delete() override {
      return files.Fails() ? Error() : ForwardingExclusiveFile::Delete();
    }
    std::error_code SetSize(std::uint64_t size) override {
      const auto error = files.Fails() ? Error() : ForwardingExclusiveFile::SetSize(size);
      if (!error) content->ready.resize(static_cast<std::size_t>(size));
      return error;
    }
    std::error_code Reserve(std::uint64_t offset, std::uint64_t size) override {
      return files.Fails() ? Error() : ForwardingExclusiveFile::Reserve(offset, size);
    }
    std::error_code Map(std::uint64_t offset, std::uint64_t size, Paging paging,
                        std::unique_ptr<Mapping>& mapping) override {
      if (files.Fails()) return Error();
      if (size > files.address_space) return std::make_error_code(std::errc::not_enough_memory);
      const auto error = ForwardingExclusiveFile::Map(offset, size, paging, mapping);
      if (error) return error;
      mapping = std::make_unique<FaultyMapping>(files, content, offset, std::move(mapping));
      return {};
    }
    std::error_code Sync() override {
      if (files.Fails()) return Error();
      content->safe = content->ready;
      return ForwardingExclusiveFile::Sync();
    }

    FaultyFiles& files;
    std::shared_ptr<Content> content;
  };

  bool Fails() {
    ++calls_;
    if (dies_ && calls_ == fail_at_) std::_Exit(9);
    return fail_at_ > 0 && (from_then_on_ ? calls_ >= fail_at_ : calls_ == fail_at_);
  }
  static std::error_code Error() { return std::make_error_code(std::errc::no_space_on_device); }

  int calls_ = 0;
  int fail_at_ = 0;
  bool from_then_on_ = false;
  bool dies_ = false;
  std::map<std::string, std::shared_ptr<Content>> contents_;
};

}  // namespace vdstomgr::os

using vdstomgr::os::FaultyFiles;
