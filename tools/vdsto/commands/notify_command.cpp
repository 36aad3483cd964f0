#include <array>

#include "tools/vdsto/cli/changes.h"
#include "tools/vdsto/cli/command.h"
#include "tools/vdsto/cli/invocation.h"
#include "tools/vdsto/commands/commands.h"

namespace vdsto {
namespace {

constexpr uint32_t kEverything = 0xFFFFFFFF;

constexpr const char* kNotes =
    R"(A notification tells a view of a host program, a tree or a list, that a folder, a date, a tag or a
deleted photo changed. Programs that write into the catalogue leave them; views look and reset them.)";

/// The notifications of one subject for one view. Those of deleted photos have GUIDs.
struct Subject {
  const char* subject;
  const char* view;
  bool (CRkPhotoDBManager::*get)(vdstomgr::NotifyArray& marks);
  void (CRkPhotoDBManager::*reset)();
};

constexpr std::array kSubjects{
    Subject{"folder", "tree", &CRkPhotoDBManager::GetNotifyFolder_Tree,
            &CRkPhotoDBManager::ResetNotifyFolder_Tree},
    Subject{"folder", "list", &CRkPhotoDBManager::GetNotifyFolder_List,
            &CRkPhotoDBManager::ResetNotifyFolder_List},
    Subject{"date", "tree", &CRkPhotoDBManager::GetNotifyDate_Tree,
            &CRkPhotoDBManager::ResetNotifyDate_Tree},
    Subject{"date", "list", &CRkPhotoDBManager::GetNotifyDate_List,
            &CRkPhotoDBManager::ResetNotifyDate_List},
    Subject{"tag", "tree", &CRkPhotoDBManager::GetNotifyTag_Tree,
            &CRkPhotoDBManager::ResetNotifyTag_Tree},
    Subject{"tag", "list", &CRkPhotoDBManager::GetNotifyTag_List,
            &CRkPhotoDBManager::ResetNotifyTag_List},
    Subject{"trash", "list", nullptr, &CRkPhotoDBManager::ResetNotifyTrash_List}};

struct Notification {
  Fact item;
  BYTE bits;
};

std::vector<Notification> TrashNotifications(Library& library) {
  vdstomgr::TrashNotifyArray marks;
  library.Call([&](auto& catalogue) { return catalogue.GetNotifyTrash_List(marks); });
  std::vector<Notification> result;
  for (const TRASHNOTIFY_INFO& mark : marks)
    result.push_back({mark.szGUID[0] == '\0' ? Fact("all") : Fact(mark.szGUID), mark.byteType});
  return result;
}

std::vector<Notification> Notifications(Library& library, const Subject& subject) {
  if (subject.get == nullptr) return TrashNotifications(library);
  vdstomgr::NotifyArray marks;
  library.Call([&](auto& catalogue) { return (catalogue.*subject.get)(marks); });
  std::vector<Notification> result;
  for (const NOTIFY_INFO& mark : marks)
    result.push_back({mark.id == kEverything ? Fact("all") : Fact(mark.id), mark.byteType});
  return result;
}

struct NotifyShow {
  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibraryToRead();
    Table table({"subject", "view", "bits", "item"});
    for (const Subject& subject : kSubjects) {
      for (const Notification& mark : Notifications(library, subject))
        table.Add({subject.subject, subject.view, mark.bits, mark.item});
    }
    return invocation.Write(table);
  }
};

struct NotifyReset {
  ChangeOptions change;

  void Declare(Command& command) { command.Change(change); }

  ExitCode Run(Invocation& invocation) const {
    Library library = invocation.OpenLibrary();
    ChangePlan plan{.noun = "notification", .participle = "reset"};
    for (const Subject& subject : kSubjects) {
      for (const Notification& mark : Notifications(library, subject)) {
        plan.names.push_back(std::string(subject.subject) + " " + subject.view + " " +
                             mark.item.text);
        plan.changed.push_back(plan.names.back());
      }
    }
    return CarryOut(invocation, plan, change, [&] { Reset(library); });
  }

 private:
  static void Reset(Library& library) {
    for (const Subject& subject : kSubjects) {
      library.Call([&](auto& catalogue) {
        (catalogue.*subject.reset)();
        return true;
      });
    }
  }
};

}  // namespace

void AddNotify(CommandGroup& tool) {
  CommandGroup notify =
      tool.AddGroup("notify", "What views of the catalogue have to draw anew", kNotes);
  notify.Add<NotifyShow>("show", "List what changed since the views last looked");
  notify.Add<NotifyReset>("reset", "Forget it");
}

}  // namespace vdsto
