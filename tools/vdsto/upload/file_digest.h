#pragma once
#include <map>
#include <string>

#include "tools/vdsto/upload/outgoing_file.h"

namespace vdsto {

/// Do the digests among a server's headers (Content-MD5, OC-Checksum, Digest and Repr-Digest with
/// MD5, SHA-1 or SHA-256) fit the file? True when there are none. Reads the file for each.
bool FitsDigests(const OutgoingFile& file, const std::map<std::string, std::string>& headers);

}  // namespace vdsto
