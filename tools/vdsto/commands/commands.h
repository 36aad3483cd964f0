#pragma once

/// The groups of commands. Each adds itself; tool.cpp lists them in the order of the help.
namespace vdsto {

class CommandGroup;

void AddImport(CommandGroup& tool);
void AddWatch(CommandGroup& tool);
void AddReindex(CommandGroup& tool);
void AddTagged(CommandGroup& tool);
void AddTree(CommandGroup& tool);
void AddList(CommandGroup& tool);
void AddInfo(CommandGroup& tool);
void AddMissing(CommandGroup& tool);
void AddFind(CommandGroup& tool);
void AddThumb(CommandGroup& tool);
void AddGallery(CommandGroup& tool);
void AddRate(CommandGroup& tool);
void AddTag(CommandGroup& tool);
void AddTitle(CommandGroup& tool);
void AddDescribe(CommandGroup& tool);
void AddRotate(CommandGroup& tool);
void AddFlag(CommandGroup& tool);
void AddCamera(CommandGroup& tool);
void AddCheck(CommandGroup& tool);
void AddUpload(CommandGroup& tool);
void AddSync(CommandGroup& tool);
void AddSyncList(CommandGroup& tool);
void AddNotify(CommandGroup& tool);
void AddSql(CommandGroup& tool);
void AddStat(CommandGroup& tool);
void AddProblems(CommandGroup& tool);
void AddStore(CommandGroup& tool);
void AddTrash(CommandGroup& tool);
void AddMakeFolder(CommandGroup& tool);
void AddMove(CommandGroup& tool);
void AddFolder(CommandGroup& tool);
void AddRoom(CommandGroup& tool);
void AddAlbum(CommandGroup& tool);
void AddReset(CommandGroup& tool);
void AddBackup(CommandGroup& tool);
void AddRestore(CommandGroup& tool);
void AddPassword(CommandGroup& tool);
/// `vdsto upload add` and `vdsto upload run`, for the group `upload`.
void AddUploadAdd(CommandGroup& upload);
void AddUploadRun(CommandGroup& upload);

}  // namespace vdsto
