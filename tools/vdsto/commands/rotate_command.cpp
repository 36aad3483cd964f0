#include <array>
#include <string_view>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"
#include "tools/vdsto/text/text.h"

namespace vdsto {
namespace {

constexpr int kFullTurn = 4;

struct Turn {
  std::string_view word;
  int quarters;  ///< clockwise
};

constexpr std::array kTurns{Turn{"right", 1}, Turn{"left", 3}, Turn{"0", 0},
                            Turn{"90", 1},    Turn{"180", 2},  Turn{"270", 3}};

int QuartersOf(const std::string& word) {
  for (const Turn& turn : kTurns) {
    if (turn.word == word) return turn.quarters;
  }
  throw ToolError(ExitCode::kUsage,
                  "TURN is right, left, 90, 180, 270 or 0, not '" + Printable(word) + "'");
}

int QuartersOf(const PHOTOINFO& photo) {
  return photo.byteRotate % kFullTurn;
}

void TurnBy(Library& library, const CStringArray& guids, int quarters) {
  library.Call([&](auto& catalogue) {
    return catalogue.SetRelativeRotate(guids, static_cast<BYTE>(quarters));
  });
}

/// One call for all photos that need the same turn.
void TurnTo(Library& library, const CStringArray& guids, int quarters) {
  std::array<CStringArray, kFullTurn> guids_by_turn;
  for (const CString& guid : guids) {
    const auto photo = library.Photo(guid.Str());
    if (!photo) continue;  // deleted meanwhile
    const int turn = (quarters - QuartersOf(*photo) + kFullTurn) % kFullTurn;
    guids_by_turn[static_cast<size_t>(turn)].Add(guid);
  }
  for (int turn = 1; turn < kFullTurn; ++turn)
    TurnBy(library, guids_by_turn[static_cast<size_t>(turn)], turn);
}

struct Rotate {
  std::string turn;
  bool to = false;
  PhotoWords photos;
  ChangeOptions change;

  void Declare(Command& command) {
    command.Word("TURN", turn, "right, left, or clockwise degrees: 90, 180, 270 (with --to also 0)")
        .Photos(photos)
        .Flag("--to", to, "TURN is where the photos end, counted from how their files lie")
        .Change(change)
        .Notes("Photos are shown turned; their files stay as they are.");
  }

  ExitCode Run(Invocation& invocation) const {
    const int quarters = QuartersOf(turn);
    if (quarters == 0 && !to)
      throw ToolError(ExitCode::kUsage, "0 turns nothing: --to 0 takes all turns back");
    const std::string degrees = std::to_string(quarters * 360 / kFullTurn) + "°";
    Library library = invocation.OpenLibrary();
    const auto is_done = [&](const PHOTOINFO& photo) {
      return to && quarters == QuartersOf(photo);
    };
    const auto apply = [&](const CStringArray& guids) {
      to ? TurnTo(library, guids, quarters) : TurnBy(library, guids, quarters);
    };
    return ChangePhotos(invocation, library, photos, change,
                        {.participle = (to ? "turned to " : "turned by ") + degrees,
                         .is_done = is_done,
                         .apply = apply});
  }
};

}  // namespace

void AddRotate(CommandGroup& tool) {
  tool.Add<Rotate>("rotate", "Turn photos by quarters");
}

}  // namespace vdsto
