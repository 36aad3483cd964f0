#include <cerrno>
#include <fstream>
#include <nlohmann/json.hpp>
#include <system_error>

#include "tools/vdsto/commands/catalogue_path.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/commands/photo_text.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

CBinData ReadThumbnail(Library& library, const PHOTOINFO& photo) {
  const std::string key = ImageKeyOf(photo.GetLTBURL());
  const std::string name = Printable(photo.GetFileName());
  if (key.empty()) {
    throw ToolError(ExitCode::kNotFound, name + " has no thumbnail" +
                                             (CanBeShown(photo) ? ": run vdsto import again"
                                                                : ": the picture is broken"));
  }
  CBinData image;
  if (!ReadImage(library.Folder(), key, image)) {
    throw ToolError(ExitCode::kNotFound,
                    "the thumbnail of " + name + " is not in the store: run vdsto import again");
  }
  return image;
}

void Write(const CBinData& image, std::ostream& out) {
  out.write(reinterpret_cast<const char*>(image.GetData()), image.GetLength());
}

void WriteFile(const CBinData& image, const std::string& path) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (file) Write(image, file);
  file.close();
  if (file) return;
  throw ToolError(ExitCode::kUnexpected, Printable(path) + " cannot be written: " +
                                             std::generic_category().message(errno));
}

}  // namespace

void RunThumb(Library& library, const std::string& photo, const std::string& target,
              OutputForm form, std::ostream& out) {
  const PHOTOINFO info = CataloguePath(library).Photo(photo);
  const CBinData image = ReadThumbnail(library, info);
  if (target == "-") return Write(image, out);
  WriteFile(image, target);
  if (form != OutputForm::kJson) return;
  out << JsonText({{"guid", info.szGUID}, {"file", target}, {"bytes", image.GetLength()}});
}

}  // namespace vdsto
