# Writes a C++ source that holds files: cmake -DOUTPUT=FILE -DHEADER=INCLUDE "-DFILES=NAME=PATH;..." -P embed.cmake
set(arrays "")
set(table "")
set(number 0)
foreach(entry ${FILES})
  string(REGEX MATCH "^([^=]*)=(.*)$" entry "${entry}")
  set(name ${CMAKE_MATCH_1})
  file(READ ${CMAKE_MATCH_2} bytes HEX)
  string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
  string(APPEND arrays "constexpr unsigned char kFile${number}[] = {\n${bytes}};\n")
  string(APPEND table "    {\"${name}\", {reinterpret_cast<const char*>(kFile${number}), sizeof kFile${number}}},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

namespace vdsto {
namespace {
${arrays}
const EmbeddedFile kFiles[] = {
${table}};
}  // namespace

std::span<const EmbeddedFile> PageFiles() {
  return kFiles;
}

}  // namespace vdsto
")
