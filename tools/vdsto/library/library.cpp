#include "tools/vdsto/library/library.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/finished_file.h"
#include "tools/vdsto/library/import_lock.h"
#include "tools/vdsto/library/photo_texts.h"
#include "tools/vdsto/text/source_location.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr const char* kCatalogueName = "catalogue.vdb";
constexpr const char* kSearchName = "search.vdb";
constexpr const char* kFactsName = "facts.vdb";
constexpr const char* kUnfinishedName = "catalogue.vdb.new";
/// The file or its folder cannot be written, or not be opened at all.
constexpr std::array kRefusals{3027, 3051};
/// The file is damaged, or what is there is no database.
constexpr std::array kDamage{3049, 3343};
constexpr const char* kNeedsPassword =
    " has a password: say --password to be asked for it, or --password-file FILE";
/// Null keys and fields, too long texts, too large numbers, texts that are no numbers.
constexpr std::array kValueErrors{3058, 3163, 3314, 3349, 3421};

struct ReportedError {
  int code;
  std::string message;
};

/// The catalogue reports on the calling thread; the first report of a call says most.
thread_local std::optional<ReportedError> reported;

void Report(int code, std::string message) {
  if (reported) return;
  std::replace_if(
      message.begin(), message.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  reported = ReportedError{code, std::move(message)};
}

[[noreturn]] void ThrowReported(ExitCode otherwise, const std::string& fallback) {
  const ReportedError error = reported.value_or(ReportedError{0, fallback});
  reported.reset();
  const bool concerns_value =
      std::find(kValueErrors.begin(), kValueErrors.end(), error.code) != kValueErrors.end();
  const bool is_damage = std::find(kDamage.begin(), kDamage.end(), error.code) != kDamage.end();
  const char* advice =
      is_damage ? " (vdsto check says what is left, vdsto restore brings back a backup)" : "";
  throw ToolError(error.code == kWrongDatabasePassword ? ExitCode::kWrongPassword : otherwise,
                  error.message + advice, concerns_value);
}

bool WasRefused() {
  return reported &&
         std::find(kRefusals.begin(), kRefusals.end(), reported->code) != kRefusals.end();
}

void CreateCatalogue(const std::string& folder, const std::string& password) {
  const std::string unfinished = Joined(folder, kUnfinishedName);
  CRkPhotoDBManager creator;
  reported.reset();
  if (!creator.CreateDB(unfinished.c_str(), password.c_str())) {
    ThrowReported(ExitCode::kCannotOpen, "cannot create a catalogue in " + folder);
  }
  const std::string path = Joined(folder, kCatalogueName);
  try {
    PublishFile(unfinished, path);
  } catch (const std::system_error& error) {
    ThrowSystemError(path, error.code());
  }
}

bool Exists(const std::string& path) {
  std::error_code error;
  const bool exists = std::filesystem::exists(path, error);
  if (error) ThrowSystemError(path, error);
  return exists;
}

}  // namespace

std::string ReadOnlyText(const std::string& folder) {
  return folder +
         " is read-only: to change it, copy the whole folder to where you can write and name the "
         "copy with --library, or get the right to write there";
}

std::string DefaultLibraryFolder() {
  const std::string folder = EnvironmentVariable("VDSTO_LIBRARY");
  const std::string data = EnvironmentVariable("XDG_DATA_HOME");
  const std::string home = EnvironmentVariable("HOME");
  if (!folder.empty()) return folder;
  if (!data.empty()) return Joined(data, "vdsto");
  if (!home.empty()) return Joined(home, ".local/share/vdsto");
  throw ToolError(ExitCode::kUsage, "no library folder: give --library or set VDSTO_LIBRARY");
}

Library::Library(const LibraryOptions& options, Use use)
    : folder_(options.folder),
      path_(Joined(options.folder, kCatalogueName)),
      search_(catalogue_, Joined(options.folder, kSearchName), options.password),
      facts_(Joined(options.folder, kFactsName), options.password),
      password_(options.password) {
  if (!Exists(path_)) {
    throw ToolError(ExitCode::kCannotOpen,
                    "no catalogue in " + options.folder +
                        " yet: run vdsto import first, or name its folder with --library");
  }
  Open(options.password, use);
}

Library::Library(const LibraryOptions& options, const ImportLock&)
    : folder_(options.folder),
      path_(Joined(options.folder, kCatalogueName)),
      search_(catalogue_, Joined(options.folder, kSearchName), options.password),
      facts_(Joined(options.folder, kFactsName), options.password),
      password_(options.password) {
  if (!Exists(path_)) CreateCatalogue(options.folder, options.password);
  Open(options.password, Use::kChanging);
}

Library::~Library() {
  catalogue_.CloseDB();
}

void Library::Open(const std::string& password, Use use) {
  reported.reset();
  if (!catalogue_.OpenDB(path_.c_str(), password.c_str())) {
    if (password.empty() && reported && reported->code == kWrongDatabasePassword)
      throw ToolError(ExitCode::kWrongPassword, folder_ + kNeedsPassword);
    if (!WasRefused()) ThrowReported(ExitCode::kCannotOpen, path_ + " cannot be opened");
    reported.reset();
    is_read_only_ = vdstomgr::OpenForReading(catalogue_, path_.c_str(), password.c_str());
    if (!is_read_only_) ThrowReported(ExitCode::kCannotOpen, path_ + " cannot be opened");
  }
  if (is_read_only_ && use == Use::kChanging)
    throw ToolError(ExitCode::kCannotOpen, ReadOnlyText(folder_));
  if (is_read_only_) search_.OnlyRead();
  const bool is_current = catalogue_.CheckPhotoMasterDBVersion();
  if (reported) ThrowReported(ExitCode::kCannotOpen, {});
  if (!is_current)
    throw ToolError(ExitCode::kCannotOpen, path_ + " is no catalogue of this version");
}

void Library::PrepareSearch() {
  if (is_read_only_) search_.StepAside();
  if (search_.IsReady()) return;
  CallSearch([](auto& copy) { copy.Make(); });
}

vdstomgr::PhotoArray Library::PhotosIn(uint32_t folder) {
  vdstomgr::PhotoArray photos;
  Call([&](auto& catalogue) { return catalogue.GetPhotoInFolder(folder, photos); });
  return photos;
}

vdstomgr::FolderArray Library::FoldersIn(uint32_t folder) {
  vdstomgr::FolderArray folders;
  Call([&](auto& catalogue) { return catalogue.GetFolderList(folders, folder); });
  return folders;
}

vdstomgr::FolderArray Library::AllFolders() {
  vdstomgr::FolderArray folders;
  Call([&](auto& catalogue) { return catalogue.GetAllFolderList(folders); });
  return folders;
}

PhotoTexts& Library::TextsOfPhotos() {
  if (!texts_) texts_ = std::make_unique<PhotoTexts>(*this);
  return *texts_;
}

void Library::ForEachPhoto(const std::function<void(const PHOTOINFO&)>& use) {
  vdstomgr::CountArray folders;
  Call([&](auto& catalogue) { return catalogue.GetPhotoCountInFolders(folders); });
  for (const COUNTINFOLDER& folder : folders) {
    for (const PHOTOINFO& photo : PhotosIn(folder.dwFolderID)) use(photo);
  }
}

std::optional<PHOTOINFO> Library::Photo(const std::string& guid) {
  PHOTOINFO photo;
  const bool is_there =
      Call([&](auto& catalogue) { return catalogue.GetPhotoInfo(guid.c_str(), photo); });
  return is_there ? std::optional(photo) : std::nullopt;
}

void Library::ForgetError() {
  reported.reset();
}

void Library::ThrowError() {
  if (reported) ThrowReported(ExitCode::kCatalogue, {});
}

void InitialiseCatalogueLibrary() {
  vdstomgr::SetTextCodePage(vdstomgr::TextCodePage::utf8);
  vdstomgr::SetDatabaseErrorHandler([](int code, const char* message) { Report(code, message); });
  vdstomgr::SetMessageBoxHandler([](const char* text) { Report(0, text); });
}

}  // namespace vdsto
