#include "vdstomgr/platform/message_parser/wqtp_parser.h"

#include "vdstomgr/platform/report/report.h"

CWQTPParser::CWQTPParser(const char* product, const char* module, const char* command) {
  vdstomgr::Trace("CWQTPParser(%s, %s, %s)", product, module, command);
}
