#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "bench/peer_database.h"

namespace bench {
namespace {

void Fill(Reader r, FOLDERINFO& f) {
  r.Number(f.dwFolderID), r.Number(f.dwParentID), r.Text(f.szFolderName), r.Text(f.szDesc);
  r.Number(f.nSpaceType), r.Text(f.szIconGUID), r.Text(f.szIconURL), r.Number(f.nPhotoCount);
  r.Number(f.bSystemFolder), r.Number(f.nFolderUpDownType), r.Number(f.bAllowPreviewImage);
  r.Number(f.bSharedOption), r.Number(f.bSecureFolder), r.Text(f.szGuestID);
  r.Text(f.szFolderPassword), r.Text(f.szSecureFolderSetter);
  r.Time(f.szModifiedDate), r.Time(f.szIModifiedDate), r.Number(f.nCreatorSubIDType);
  r.Text(f.szCreatorSubID), r.Text(f.szMemoID), r.Number(f.bAllowComment);
  r.Number(f.nCommentCount);
}

/// The folder table by hand.
class PeerFolders {
 public:
  explicit PeerFolders(const std::string& path) : db_(path) {
    read_ = db_.Prepare(
        "SELECT dwFolderID, dwParentID, szFolderName, szDesc, nSpaceType, szIconGUID, szIconURL, "
        "nPhotoCount, bSystemFolder, nFolderUpDownType, bAllowPreviewImage, bSharedOption, "
        "bSecureFolder, szGuestID, szFolderPassword, szSecureFolderSetter, szModifiedDate, "
        "szIModifiedDate, nCreatorSubIDType, szCreatorSubID, szMemoID, bAllowComment, "
        "nCommentCount "
        "FROM FolderInfo WHERE dwFolderID = ?1");
  }

  bool Read(DWORD id, FOLDERINFO& folder) {
    Binder(read_).Number(static_cast<std::int32_t>(id));
    return ReadOne(read_, folder, Fill);
  }

 private:
  PeerDatabase db_;
  PeerStatement read_;
};

bool GetFolderInfo(OurCatalogue& ours, std::uint64_t number) {
  FOLDERINFO folder;
  return ours.GetFolderInfo(FolderOf(number), folder);
}

bool ReadFolder(PeerFolders& peer, std::uint64_t number) {
  FOLDERINFO folder;
  return peer.Read(FolderOf(number), folder);
}

}  // namespace

std::vector<Case> FolderCases() {
  return {{"GetFolderInfo", On(GetFolderInfo), On(ReadFolder), 20'000}};
}

}  // namespace bench
