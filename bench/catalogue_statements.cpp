#include "bench/catalogue_case.h"
#include "bench/catalogue_records.h"
#include "bench/peer_photos.h"
#include "vdstomgr/platform/dao/rk_dao.h"

namespace bench {
namespace {

/// The database class alone, without the catalogue above it.
struct OurDatabase : CRkDaoDatabase {
  explicit OurDatabase(const std::string& path) { Open(path.c_str()); }
};

std::string TitleOf(std::uint64_t number) {
  return "제목 " + std::to_string(number) + "-" + std::to_string(Fresh());
}

bool ExecuteUpdate(OurDatabase& ours, std::uint64_t number) {
  const std::string sql = "UPDATE PhotoMaster SET szTitle = '" + TitleOf(number) +
                          "', byteInfoSync = 1 WHERE szGUID = '" + GuidOf(number) + "'";
  ours.Execute(sql.c_str());
  return ours.GetRecordsAffected() == 1;
}

bool SetTitle(PeerPhotos& peer, std::uint64_t number) {
  return peer.SetTitle(GuidOf(number).c_str(), TitleOf(number).c_str());
}

}  // namespace

std::vector<Case> StatementCases() {
  return {{"Execute, cached", On(ExecuteUpdate), On(SetTitle), 3000}};
}

}  // namespace bench
