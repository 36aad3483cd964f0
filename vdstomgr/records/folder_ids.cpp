#include "vdstomgr/records/folder_ids.h"

#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

CString RootFolderName(DWORD id) {
  switch (id) {
    case kPersonalRoot:
      return FromUtf8("개인 폴더");
    case kPublicRoot:
      return FromUtf8("공용 폴더");
    case kGuestRoot:
      return FromUtf8("게스트 폴더");
    default:
      return {};
  }
}

CString TrashFolderName() {
  return FromUtf8("휴지통");
}

}  // namespace vdstomgr
