#include "tools/vdsto/tool.h"

int main(int argc, char** argv) {
  return vdsto::RunTool(argc, argv);
}
