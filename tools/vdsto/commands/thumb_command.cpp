#include <cerrno>
#include <fstream>
#include <system_error>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/selection/catalogue_path.h"
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

struct Thumb {
  std::string photo;
  std::string target;

  void Declare(Command& command) {
    command.Photo(photo).RequiredOption("-o,--output", "FILE", target,
                                        "The file to write, or - for standard output");
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    const PHOTOINFO info = CataloguePath(library).Photo(photo);
    const CBinData image = ReadThumbnail(library, info);
    if (target == "-") {
      Write(image, invocation.Output());
      return ExitCode::kOk;
    }
    WriteFile(image, target);
    return invocation.Write(Facts()
                                .ForPrograms("guid", info.szGUID)
                                .ForPrograms("file", target)
                                .ForPrograms("bytes", image.GetLength()));
  }
};

}  // namespace

void AddThumb(CommandGroup& tool) {
  tool.Add<Thumb>("thumb", "Write the thumbnail of one photo to a JPEG file");
}

}  // namespace vdsto
