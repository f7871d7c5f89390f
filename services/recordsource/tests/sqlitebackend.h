// services/recordsource/tests/sqlitebackend.h: the SQLite back end of the contract suite.
#pragma once

#include "services/recordsource/tests/backend.h"

namespace plx::testing {

// Tables become tables of one file "contract.sqlite" in the test folder, with the declared
// types the SQLite back end maps back to the field types.
std::shared_ptr<BackEnd> makeSqliteBackEnd();

} // namespace plx::testing
