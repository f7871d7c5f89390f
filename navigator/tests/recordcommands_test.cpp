// navigator/tests/recordcommands_test.cpp: the record commands' state: captions, the new
// record through EDIT, CANCEL, SAVE and DELETE, the return position.
#include "navigator/recordcommands_p.h"

#include <gtest/gtest.h>

namespace plx {
namespace {

using Command = RecordCommands::Command;
using Mode = RecordCommands::Mode;

TEST(RecordCommands, CaptionsNameTheCommandWhatItNeedsAndWhatItDoesToTheToolbar)
{
    const struct
    {
        const char *caption;
        Command command;
        bool needsRecord;
        std::optional<bool> editing;
    } rows[] = {
        { "new", Command::New, false, true },    { "Edit", Command::Edit, true, true },
        { "COPY", Command::Copy, true, true },   { "Delete", Command::Delete, true, {} },
        { "save", Command::Save, false, false }, { "Cancel", Command::Cancel, false, false },
        { "Close", Command::None, false, {} },   { "Edit ", Command::None, false, {} },
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.caption);
        const Command command = RecordCommands::commandFor(QString::fromLatin1(row.caption));
        EXPECT_EQ(command, row.command);
        EXPECT_EQ(RecordCommands::needsCurrentRecord(command), row.needsRecord);
        EXPECT_EQ(RecordCommands::editingAfter(command), row.editing);
    }
    // One command at a time: a click while one runs is refused.
    RecordCommands commands;
    ASSERT_TRUE(commands.begin());
    EXPECT_FALSE(commands.begin());
    commands.finish();
    EXPECT_TRUE(commands.begin());
}

TEST(RecordCommands, ANewRecordIsOfferedForDeletionUntilSavedOrDeleted)
{
    RecordCommands commands;
    const QString made = QStringLiteral("PLE0000011");
    commands.recordCreated(made);
    commands.editStarted(made);
    EXPECT_EQ(commands.mode(), Mode::New);
    EXPECT_TRUE(commands.offersDeletion(made, made + QStringLiteral("  "))); // fixed width
    EXPECT_EQ(commands.release(), made);
    EXPECT_EQ(commands.mode(), Mode::None);
    EXPECT_EQ(commands.release(), QString());

    // Kept on CANCEL: an older record's edit offers nothing, nor does typing over the ID.
    const QString older = QStringLiteral("PLE0000003");
    commands.editStarted(older);
    EXPECT_EQ(commands.mode(), Mode::Edit);
    EXPECT_FALSE(commands.offersDeletion(older, older));
    EXPECT_FALSE(commands.offersDeletion(made, older));
    commands.release();
    commands.recordDeleted(older);
    EXPECT_TRUE(commands.isNewRecord(made));

    commands.newRecordSaved();
    EXPECT_FALSE(commands.isNewRecord(made));
    commands.recordCreated(made);
    commands.recordDeleted(made);
    EXPECT_FALSE(commands.offersDeletion(made, made));
}

TEST(RecordCommands, ADeletedNewRecordReturnsToWhereNewWasPressedWhileItStillExists)
{
    EXPECT_EQ(RecordCommands::returnPositionFor(true, false, 5, 10), 0);
    EXPECT_EQ(RecordCommands::returnPositionFor(false, true, -1, 10), 9);
    EXPECT_EQ(RecordCommands::returnPositionFor(false, false, -1, 10), 9);
    EXPECT_EQ(RecordCommands::returnPositionFor(false, false, 4, 10), 4);
    RecordCommands commands;
    commands.rememberReturnPosition(4);
    EXPECT_EQ(commands.returnPositionWithin(5), 4);
    EXPECT_EQ(commands.returnPositionWithin(4), std::nullopt);
    commands.rememberReturnPosition(RecordCommands::returnPositionFor(false, true, -1, 0));
    EXPECT_EQ(commands.returnPositionWithin(10), std::nullopt);
}

} // namespace
} // namespace plx
