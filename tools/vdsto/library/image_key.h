#pragma once
#include <memory>
#include <string>
#include <vector>

#include "tools/vdsto/library/image_seal.h"
#include "tools/vdsto/library/import_lock.h"
#include "tools/vdsto/library/library.h"

/// The key of a library's images, which is random and lies in the catalogue, in a table that only
/// a library under a password has. Whoever loses that file has lost more than the key.
namespace vdsto {

/// What encrypts the images of a library; null when nothing does. Throws ToolError.
std::shared_ptr<const ImageSeal> SealOf(const Library& library);

/// Are there images that the next import is to encrypt? Throws ToolError.
bool NeedsSealing(const Library& library);

/// Before images are added: sees to it that a library under a password has its key and that all
/// images are encrypted with it. Answers sentences about what was done or could not be done. Images
/// of a key that is gone are dropped, and the next import makes them. Throws ToolError.
std::vector<std::string> PrepareSeal(const Library& library, const ImportLock& lock);

/// Before a library gets rid of its password: decrypts all images. Throws ToolError, and each image
/// can be read then as before.
void UnsealImages(const Library& library, const ImportLock& lock);

/// Gives a database that is under a password a key, unless it has one.
void AddImageKey(CDaoDatabase& database);
/// Takes it away.
void DropImageKey(CDaoDatabase& database);

}  // namespace vdsto
