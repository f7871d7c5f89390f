// services/recordsource/tests/engineregistry_test.cpp: OpenDatabase finds the engines that
// registered themselves, by the first part of the connect string, and only those.
//
// This program links plx::backends and nothing in it names an engine: the two built-in
// engines are here only if their libraries' registrations survived the link.
#include "services/recordsource/database.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx {
namespace {

TEST(EngineRegistryTest, TheLinkedInEnginesRegisteredThemselves)
{
    const QStringList engines = databaseEngines();
    EXPECT_TRUE(engines.contains(QString())) << engines.join(QLatin1Char('|')).toStdString();
    EXPECT_TRUE(engines.contains(QStringLiteral("FoxPro 2.6")));

    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    auto sqlite = OpenDatabase(dir.filePath(QStringLiteral("a.db")), false, false,
                               QStringLiteral(";Create=Yes"));
    ASSERT_TRUE(sqlite.isOk()) << sqlite.status().toString().toStdString();
    EXPECT_EQ(sqlite.value()->textCompare(), TextCompare::NoCase);
    // Case and options do not matter to the choice of engine.
    auto foxpro = OpenDatabase(dir.path(), false, true, QStringLiteral("foxpro 2.6;CodePage=850"));
    ASSERT_TRUE(foxpro.isOk()) << foxpro.status().toString().toStdString();
    EXPECT_EQ(foxpro.value()->textCompare(), TextCompare::Binary);
}

TEST(EngineRegistryTest, AnUnknownConnectStringIsRefusedByName)
{
    auto db = OpenDatabase(QStringLiteral("x"), false, false, QStringLiteral("Paradox 4.x;PWD=1"));
    ASSERT_FALSE(db.isOk());
    EXPECT_EQ(db.status().code(), Status::Code::NotSupported);
    EXPECT_EQ(db.status().message(),
              QStringLiteral("unknown connect string \"Paradox 4.x;PWD=1\""));
}

// What the test engine below was asked for last.
QString g_openedName;
DatabaseOptions g_openedWith;

Result<std::unique_ptr<Database>> openTestEngine(const QString &name,
                                                 const DatabaseOptions &options)
{
    g_openedName = name;
    g_openedWith = options;
    return Status(Status::Code::NotFound, QStringLiteral("test engine has no databases"));
}

Result<std::unique_ptr<Database>> openImpostor(const QString &, const DatabaseOptions &)
{
    return Status(Status::Code::Internal, QStringLiteral("the impostor was called"));
}

TEST(EngineRegistryTest, ANewEngineIsOneRegistrationAndANameIsTakenOnce)
{
    ASSERT_TRUE(registerDatabaseEngine(QStringLiteral("Test Engine"), &openTestEngine));
    EXPECT_FALSE(registerDatabaseEngine(QStringLiteral("TEST ENGINE"), &openImpostor));
    EXPECT_FALSE(registerDatabaseEngine(QStringLiteral("FoxPro 2.6"), &openImpostor));
    EXPECT_FALSE(registerDatabaseEngine(QString(), &openImpostor));
    EXPECT_FALSE(registerDatabaseEngine(QStringLiteral("No Opener"), nullptr));

    auto db = OpenDatabase(QStringLiteral("/data/x"), true, true,
                           QStringLiteral(" test engine ;Server=here"));
    EXPECT_EQ(db.status().message(), QStringLiteral("test engine has no databases"));
    EXPECT_EQ(g_openedName, QStringLiteral("/data/x"));
    EXPECT_TRUE(g_openedWith.exclusive);
    EXPECT_TRUE(g_openedWith.readOnly);
    EXPECT_EQ(g_openedWith.connect, QStringLiteral(" test engine ;Server=here"));

    // The built-in engines are still the ones that answer to their names.
    QTemporaryDir dir;
    auto foxpro = OpenDatabase(dir.filePath(QStringLiteral("missing")), false, true,
                               QStringLiteral("FoxPro 2.6"));
    EXPECT_EQ(foxpro.status().code(), Status::Code::NotFound);
    EXPECT_TRUE(databaseEngines().contains(QStringLiteral("Test Engine")));
    EXPECT_FALSE(databaseEngines().contains(QStringLiteral("No Opener")));
}

} // namespace
} // namespace plx
