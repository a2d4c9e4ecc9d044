#include "project/TCmdCode.h"

int main() { return CmdCode.getName("jamp") == "Jamp" ? 0 : 1; }
