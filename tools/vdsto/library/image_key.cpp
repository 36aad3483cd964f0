#include "tools/vdsto/library/image_key.h"

#include "tools/vdsto/library/database_password.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/library/store_rewriting.h"
#include "tools/vdsto/text/text.h"
#include "tools/vdsto/tool_error.h"

namespace vdsto {
namespace {

constexpr int kUnknownTable = 3078;

struct StoredKey {
  ImageSeal::Key key;
  bool is_everywhere;  ///< no image is plain any more
};

std::string HexOf(const ImageSeal::Key& key) {
  std::string text;
  for (const uint8_t byte : key) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::optional<ImageSeal::Key> KeyOf(const std::string& text) {
  ImageSeal::Key key;
  if (text.size() != 2 * key.size() ||
      text.find_first_not_of("0123456789abcdef") != std::string::npos)
    return std::nullopt;
  for (size_t i = 0; i < key.size(); ++i)
    key[i] = static_cast<uint8_t>(std::stoul(text.substr(2 * i, 2), nullptr, 16));
  return key;
}

/// Nothing without the table.
std::optional<StoredKey> Find(CDaoDatabase& database) {
  try {
    CDaoRecordset rows(&database);
    rows.Open(dbOpenDynaset, "SELECT szKey, byteEverywhere FROM VdstoImageKey");
    if (rows.IsEOF()) return std::nullopt;
    const auto key = KeyOf(rows.GetFieldValue(0).ToText().Str());
    if (!key) return std::nullopt;
    return StoredKey{*key, rows.GetFieldValue(1).ToInteger() != 0};
  } catch (const CDaoException& error) {
    if (error.Code() != kUnknownTable) throw;
    return std::nullopt;
  }
}

void NoteEverywhere(CDaoDatabase& database, bool is_everywhere) {
  database.Execute(is_everywhere ? "UPDATE VdstoImageKey SET byteEverywhere = 1"
                                 : "UPDATE VdstoImageKey SET byteEverywhere = 0");
}

/// Runs `operation` on the catalogue over a connection of its own.
template <class Operation>
auto OnCatalogue(const Library& library, Use use, Operation operation) {
  try {
    CDaoDatabase database;
    OpenUnderPassword(database, library.CataloguePath(), library.Password(), use == Use::kChanging);
    return operation(database);
  } catch (const CDaoException& error) {
    throw ToolError(ExitCode::kCatalogue, error.what());
  }
}

std::optional<std::vector<uint8_t>> Copied(ImageBytes image) {
  return std::vector<uint8_t>(image.begin(), image.end());
}

RewriteSummary SealImages(const std::string& folder, const ImageSeal::Key& key,
                          const ImportLock& lock) {
  const ImageSeal seal(key, true);
  return RewriteImages(folder, lock, [&](const std::string& name, ImageBytes stored) {
    if (!IsSealed(stored)) return std::optional(seal.Seal(name, stored));
    return seal.Open(name, stored) ? Copied(stored) : std::nullopt;
  });
}

}  // namespace

std::shared_ptr<const ImageSeal> SealOf(const Library& library) {
  if (library.Password().empty()) return nullptr;
  return OnCatalogue(library, Use::kReading, [](CDaoDatabase& database) {
    const auto found = Find(database);
    return found ? std::make_shared<const ImageSeal>(found->key, !found->is_everywhere) : nullptr;
  });
}

bool NeedsSealing(const Library& library) {
  return OnCatalogue(library, Use::kReading, [](CDaoDatabase& database) {
    const auto found = Find(database);
    return !found || !found->is_everywhere;
  });
}

std::vector<std::string> PrepareSeal(const Library& library, const ImportLock& lock) {
  if (library.Password().empty()) return {};
  return OnCatalogue(
      library, Use::kChanging, [&](CDaoDatabase& database) -> std::vector<std::string> {
        AddImageKey(database);
        const auto found = Find(database);
        if (!found || found->is_everywhere) return {};
        try {
          const RewriteSummary summary = SealImages(library.Folder(), found->key, lock);
          NoteEverywhere(database, true);
          if (summary.images + summary.dropped == 0) return {};
          return {"The thumbnails are encrypted now: " + Counted(summary.images, "image") + "."};
        } catch (const ToolError& error) {
          return {
              std::string("The thumbnails are not all encrypted, the next import tries again: ") +
              error.what()};
        }
      });
}

void UnsealImages(const Library& library, const ImportLock& lock) {
  OnCatalogue(library, Use::kChanging, [&](CDaoDatabase& database) {
    const auto found = Find(database);
    if (!found) return;
    NoteEverywhere(database, false);
    const ImageSeal seal(found->key, true);
    RewriteImages(library.Folder(), lock, [&](const std::string& name, ImageBytes stored) {
      return seal.Open(name, stored);
    });
  });
}

void AddImageKey(CDaoDatabase& database) {
  if (Find(database)) return;
  DropImageKey(database);
  database.Execute("CREATE TABLE VdstoImageKey (szKey CHAR(64), byteEverywhere BYTE)");
  database.Execute(("INSERT INTO VdstoImageKey (szKey, byteEverywhere) VALUES ('" +
                    HexOf(ImageSeal::NewKey()) + "', 0)")
                       .c_str());
}

void DropImageKey(CDaoDatabase& database) {
  try {
    database.Execute("DROP TABLE VdstoImageKey");
  } catch (const CDaoException&) {
    // there is none
  }
}

}  // namespace vdsto
