#include <vector>

#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/cli/output_file.h"
#include "tools/vdsto/cli/photo_text.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/library/image_key.h"
#include "tools/vdsto/library/image_store.h"
#include "tools/vdsto/selection/catalogue_path.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr const char* kNotes =
    R"(The file appears whole or not at all. It never takes the place of a picture of the catalogue, also of
one that is away at the moment, nor of a file of the library.)";

std::vector<uint8_t> ReadThumbnail(const Library& library, const PHOTOINFO& photo) {
  const std::string key = ImageKeyOf(photo.GetLTBURL());
  const std::string name = Printable(photo.GetFileName());
  if (key.empty()) {
    throw ToolError(ExitCode::kNotFound, name + " has no thumbnail" +
                                             (CanBeShown(photo) ? ": run vdsto import again"
                                                                : ": the picture is broken"));
  }
  std::vector<uint8_t> image;
  if (!ReadImage(library.Folder(), key, SealOf(library).get(), image)) {
    throw ToolError(ExitCode::kNotFound,
                    "the thumbnail of " + name + " is not in the store: run vdsto import again");
  }
  return image;
}

struct Thumb {
  std::string photo;
  std::string target;
  bool force = false;

  void Declare(Command& command) {
    command.Photo(photo)
        .RequiredOption("-o,--output", "FILE", target,
                        "The file to write, or - for standard output")
        .Flag("-f,--force", force, "Replace a file that exists; pictures of the catalogue stay")
        .Notes(kNotes);
  }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    const PHOTOINFO info = CataloguePath(library).Photo(photo);
    const std::vector<uint8_t> bytes = ReadThumbnail(library, info);
    if (target == "-") return invocation.WriteBytes(bytes);
    const OutputFile output(target);
    output.RequireFree(library, force);
    output.Write(bytes);
    return invocation.Write(Facts()
                                .ForPrograms("guid", info.szGUID)
                                .ForPrograms("file", target)
                                .ForPrograms("bytes", bytes.size()));
  }
};

}  // namespace

void AddThumb(CommandGroup& tool) {
  tool.Add<Thumb>("thumb", "Write the thumbnail of one photo to a JPEG file");
}

}  // namespace vdsto
