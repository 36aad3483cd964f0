#include "vdstomgr/records/fixed_text.h"

#include <cstring>

#include "vdstomgr/platform/text/code_page.h"

namespace vdstomgr {

void CopyToFixed(char* field, std::size_t capacity, std::string_view text) {
  const std::string_view cut = CutToBytes(text, capacity - 1);
  std::memmove(field, cut.data(), cut.size());
  field[cut.size()] = '\0';
}

}  // namespace vdstomgr
