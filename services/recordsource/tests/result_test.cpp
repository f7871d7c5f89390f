// services/recordsource/tests/result_test.cpp: a Result never claims a value it lacks.
#include "services/recordsource/result.h"

#include <gtest/gtest.h>

namespace plx {
namespace {

TEST(ResultTest, AnOkStatusWithoutAValueIsAnInternalErrorInEveryBuild)
{
    const Result<int> made(Status::ok());
    EXPECT_FALSE(made.isOk());
    EXPECT_EQ(made.status().code(), Status::Code::Internal);
    EXPECT_EQ(made.status().toString().left(16), QStringLiteral("Internal error: "));

    const Result<int> failed(Status(Status::Code::NotFound, QStringLiteral("no such table")));
    EXPECT_EQ(failed.status().code(), Status::Code::NotFound);
    const Result<int> value(7);
    ASSERT_TRUE(value.isOk());
    EXPECT_EQ(value.value(), 7);
}

} // namespace
} // namespace plx
