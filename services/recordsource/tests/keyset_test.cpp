// services/recordsource/tests/keyset_test.cpp: the chunked keyset of the SQLite back end
// across its chunk boundaries, where an off-by-one would lose or repeat a record.
#include "services/recordsource/sqlite/internal/keyset.h"

#include <gtest/gtest.h>

namespace plx::sqlite {
namespace {

constexpr qint64 Chunk = 65536;

TEST(KeySetTest, KeysSurviveAppendAndRemoveAcrossChunkBoundaries)
{
    KeySet keys;
    std::vector<qint64> model;
    for (qint64 i = 0; i < 2 * Chunk + 10; ++i) {
        keys.append(i * 3 + 1);
        model.push_back(i * 3 + 1);
    }
    for (qint64 at : { Chunk - 1, Chunk, qint64(0), 2 * Chunk + 6, Chunk * 2 - 3 }) {
        keys.removeAt(at);
        model.erase(model.begin() + at);
    }
    ASSERT_EQ(keys.size(), qint64(model.size()));
    for (qint64 i = 0; i < keys.size(); ++i)
        ASSERT_EQ(keys.at(i), model[size_t(i)]) << i;
    // Shrinking below a chunk boundary gives the chunk back.
    const size_t before = keys.bytes();
    for (int i = 0; i < 10; ++i)
        keys.removeAt(keys.size() - 1);
    EXPECT_LT(keys.bytes(), before);
    EXPECT_EQ(keys.at(keys.size() - 1), model[size_t(keys.size() - 1)]);
}

TEST(KeySetTest, SearchesStartAtTheGivenIndexAndCrossChunks)
{
    KeySet keys;
    for (qint64 i = 0; i < 3 * Chunk; ++i)
        keys.append(i % 7);
    EXPECT_EQ(keys.indexOf(0, 3), 3);
    EXPECT_EQ(keys.indexOf(4, 3), 10);
    EXPECT_EQ(keys.indexOf(Chunk - 2, 0), Chunk - 2 + ((7 - (Chunk - 2) % 7) % 7));
    EXPECT_EQ(keys.indexOf(0, 99), -1);
    EXPECT_EQ(keys.indexOf(3 * Chunk, 1), -1);
    EXPECT_EQ(keys.indexWhere(Chunk, [](qint64 k) { return k == 6; }),
              Chunk + (6 - Chunk % 7 + 7) % 7);
    EXPECT_EQ(keys.indexWhere(0, [](qint64 k) { return k > 6; }), -1);
    EXPECT_EQ(KeySet().indexOf(0, 0), -1);
}

} // namespace
} // namespace plx::sqlite
