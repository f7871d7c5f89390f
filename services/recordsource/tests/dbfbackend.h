// services/recordsource/tests/dbfbackend.h: the FoxPro back end of the contract suite.
#pragma once

#include "services/recordsource/tests/backend.h"

namespace plx::testing {

// Each table becomes a FoxPro 2.6 file <name>.DBF (with an .FPT for memos) in the test
// folder, written through the table file layer in `codePage`; the folder opens as
// "FoxPro 2.6".
std::shared_ptr<BackEnd> makeDbfBackEnd(int codePage = 1252);

} // namespace plx::testing
