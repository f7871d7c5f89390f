// services/recordsource/tests/backends.cpp: the list of back ends the contract suite runs on.
#include "services/recordsource/tests/backend.h"

#include "services/recordsource/tests/dbfbackend.h"
#include "services/recordsource/tests/postgresbackend.h"
#include "services/recordsource/tests/sqlitebackend.h"

namespace plx::testing {

const std::vector<std::shared_ptr<BackEnd>> &allBackEnds()
{
    static const std::vector<std::shared_ptr<BackEnd>> list = [] {
        std::vector<std::shared_ptr<BackEnd>> backEnds{ makeSqliteBackEnd(), makeDbfBackEnd() };
        if (postgresJoinsTheSuite())
            backEnds.push_back(makePostgresBackEnd());
        return backEnds;
    }();
    return list;
}

std::shared_ptr<BackEnd> backEndNamed(const QString &name)
{
    for (const std::shared_ptr<BackEnd> &backEnd : allBackEnds()) {
        if (backEnd->name() == name)
            return backEnd;
    }
    return nullptr;
}

} // namespace plx::testing
