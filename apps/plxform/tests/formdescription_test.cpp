// apps/plxform/tests/formdescription_test.cpp: form descriptions written, edited by hand
// and read back; files that are wrong in every way a user can make them wrong.
#include "apps/plxform/formdescription.h"
#include "apps/plxform/tests/sampletesting.h"

#include "services/ini.h"
#include "tests/support/testfiles.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace plx::form {
namespace {

using test::writeBytes;

TEST(FormDescription, RoundTripKeepsEveryPartAndAHandEditIsRead)
{
    QTemporaryDir dir;
    FormDescription form;
    form.file = dir.filePath(QStringLiteral("FACILITY.DBF"));
    form.desc = QStringLiteral("Facilities");
    form.idField = QStringLiteral("ID");
    form.descField = QStringLiteral("NAME");
    form.sorts = { { QStringLiteral("Name"), QStringLiteral("NAME, CITY") },
                   { QStringLiteral("ID"), QStringLiteral("ID") } };
    form.required = { QStringLiteral("NAME"), QStringLiteral("CITY") };
    form.rows = { { QStringLiteral("Name"), QStringLiteral("NAME"), QString(),
                    QStringLiteral("Upper"), 30, 1200 },
                  { QStringLiteral("Opened"), QStringLiteral("OPENED"),
                    QStringLiteral("mm/dd/yyyy"), QStringLiteral("Date") } };
    form.checks = { { QStringLiteral("Active"), QStringLiteral("ACTIVE") } };
    form.pairs = { { QStringLiteral("Medicare"),
                     QStringLiteral("MEDICARE"),
                     { { QStringLiteral("Provider no."), QStringLiteral("MEDNUM") },
                       { QStringLiteral("Since"), QStringLiteral("MEDSINCE") } } } };
    const QString path = dir.filePath(QStringLiteral("form.ini"));
    ASSERT_TRUE(saveFormDescription(form, path).isOk());

    // The user changes one caption in an editor.
    QByteArray text = test::readBytes(path);
    ASSERT_FALSE(text.isEmpty());
    text.replace("Caption=Opened", "Caption=Opened on");
    writeBytes(path, text);

    QStringList warnings;
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    ASSERT_TRUE(read.isOk()) << read.status().message().toStdString();
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
    const FormDescription &back = read.value();
    EXPECT_EQ(back.file, form.file);
    EXPECT_EQ(back.desc, form.desc);
    EXPECT_EQ(back.sorts, form.sorts);
    EXPECT_EQ(back.required, form.required);
    ASSERT_EQ(back.rows.size(), 2);
    EXPECT_EQ(back.rows[0].mode, QStringLiteral("Upper"));
    EXPECT_EQ(back.rows[0].maxLength, 30);
    EXPECT_EQ(back.rows[0].labelWidth, 1200);
    EXPECT_EQ(back.rows[1].caption, QStringLiteral("Opened on"));
    EXPECT_EQ(back.rows[1].format, QStringLiteral("mm/dd/yyyy"));
    ASSERT_EQ(back.checks.size(), 1);
    EXPECT_EQ(back.checks[0].field, QStringLiteral("ACTIVE"));
    ASSERT_EQ(back.pairs.size(), 1);
    EXPECT_EQ(back.pairs[0].field, QStringLiteral("MEDICARE"));
    EXPECT_EQ(back.pairs[0].details, form.pairs[0].details);
}

TEST(FormDescription, MistakesAreReportedNotFatal)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("form.ini"));
    writeBytes(path,
               "[FORM]\r\nFile=/x/T.DBF\r\nColour=blue\r\nSorts=Name:NAME|broken|ID:\r\n"
               "[ROW1]\r\nCaption=Name\r\nField=NAME\r\nMaxLength=lots\r\n"
               "[ROW2]\r\nCaption=Nothing\r\n[EXTRA]\r\nx=1\r\n");
    QStringList warnings;
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    ASSERT_TRUE(read.isOk());
    EXPECT_EQ(
        warnings,
        (QStringList{ QStringLiteral("Unknown key \"Colour\" in [FORM] ignored"),
                      QStringLiteral("Unknown section [EXTRA] ignored"),
                      QStringLiteral("Sort \"broken\" ignored: write it as Name:FIELD, FIELD"),
                      QStringLiteral("Sort \"ID:\" ignored: write it as Name:FIELD, FIELD"),
                      QStringLiteral(
                          "MaxLength \"lots\" in [ROW1] is not a length; the field's size is used"),
                      QStringLiteral("[ROW2] names no Field; the row is left out") }));
    EXPECT_EQ(read.value().rows.size(), 1);
    EXPECT_EQ(read.value().sorts.size(), 1);

    const QList<FieldInfo> fields{ { QStringLiteral("ID"), FieldType::Text, 10, 0 },
                                   { QStringLiteral("NAME"), FieldType::Text, 30, 0 } };
    FormDescription wrong = read.value();
    wrong.rows.append({ QStringLiteral("City"), QStringLiteral("CTY"), QString(), QString() });
    wrong.idField = QStringLiteral("ID");
    EXPECT_EQ(checkFieldNames(wrong, fields),
              QStringList{ QStringLiteral(
                  "Row 2 (City) names the field \"CTY\", which the table does not have") });
}

// A value-item row's list named relative to the description is the list beside it, wherever
// the two are moved; a row that cannot keep its list still shows, and says why.
TEST(FormDescription, ValueItemRowsFindTheirListBesideTheDescription)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("form.ini"));
    writeBytes(path,
               "[FORM]\nFile=/x/T.DBF\n"
               "[VALUES1]\nCaption=Programs\nField=PROGRAMS\nListFile=LISTS.INI\n"
               "ListSection=FACILITY\nListKey=Programs\n"
               "[VALUES2]\nCaption=Payers\nField=PAYERS\nListFile=/lists/P.INI\nListSection=P\n"
               "[VALUES3]\nCaption=Nothing\nListKey=x\nColour=red\n");
    QStringList warnings;
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    ASSERT_TRUE(read.isOk());
    EXPECT_EQ(
        warnings,
        (QStringList{
            QStringLiteral("Unknown key \"Colour\" in [VALUES3] ignored"),
            QStringLiteral(
                "[VALUES2] needs ListFile, ListSection and ListKey; its value list is not kept"),
            QStringLiteral("[VALUES3] names no Field; the value-item row is left out") }));
    const QList<ValueRowDescription> &rows = read.value().valueRows;
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[0].listFile, dir.filePath(QStringLiteral("LISTS.INI")));
    EXPECT_EQ(rows[0].listSection, QStringLiteral("FACILITY"));
    EXPECT_EQ(rows[0].listKey, QStringLiteral("Programs"));
    EXPECT_EQ(rows[1].listFile, QStringLiteral("/lists/P.INI"));

    const QString again = dir.filePath(QStringLiteral("again.ini"));
    ASSERT_TRUE(saveFormDescription(read.value(), again).isOk());
    Result<FormDescription> back = loadFormDescription(again, &warnings);
    ASSERT_TRUE(back.isOk());
    ASSERT_EQ(back.value().valueRows.size(), 2);
    EXPECT_EQ(back.value().valueRows[0].caption, QStringLiteral("Programs"));
    EXPECT_EQ(back.value().valueRows[0].listFile, rows[0].listFile);
    EXPECT_EQ(back.value().valueRows[1].listKey, QString());
    EXPECT_EQ(
        checkFieldNames(back.value(), { { QStringLiteral("PROGRAMS"), FieldType::Text, 30, 0 } }),
        QStringList{ QStringLiteral(
            "Value row 2 (Payers) names the field \"PAYERS\", which the table does not have") });
}

TEST(FormDescription, FilesThatAreNoDescriptionAreRefusedWithAReason)
{
    QTemporaryDir dir;
    QStringList warnings;
    EXPECT_EQ(
        loadFormDescription(dir.filePath(QStringLiteral("missing.ini")), &warnings).status().code(),
        Status::Code::NotFound);
    const QString binary = dir.filePath(QStringLiteral("binary.ini"));
    writeBytes(binary, QByteArray("\x00\x01\x02[FORM]\xff", 9));
    EXPECT_EQ(loadFormDescription(binary, &warnings).status().code(), Status::Code::Corrupt);
    const QString noForm = dir.filePath(QStringLiteral("noform.ini"));
    writeBytes(noForm, "just some text\nwithout sections");
    EXPECT_EQ(loadFormDescription(noForm, &warnings).status().code(), Status::Code::Corrupt);
    const QString both = dir.filePath(QStringLiteral("both.ini"));
    writeBytes(both, "[FORM]\nFile=a.dbf\nDatabase=b.sqlite\nTable=T\n");
    EXPECT_EQ(loadFormDescription(both, &warnings).status().code(), Status::Code::InvalidArgument);
    const QString noTable = dir.filePath(QStringLiteral("notable.ini"));
    writeBytes(noTable, "[FORM]\nDatabase=b.sqlite\n");
    EXPECT_EQ(loadFormDescription(noTable, &warnings).status().code(),
              Status::Code::InvalidArgument);
    writeBytes(noTable, "[FORM]\nServer=dbname=crm\n");
    EXPECT_EQ(loadFormDescription(noTable, &warnings).status().code(),
              Status::Code::InvalidArgument);
    writeBytes(both, "[FORM]\nServer=dbname=crm\nDatabase=b.sqlite\nTable=T\n");
    EXPECT_EQ(loadFormDescription(both, &warnings).status().code(), Status::Code::InvalidArgument);
}

// A server's table is kept as its connection string, and known to the user by its database.
TEST(FormDescription, AServerTableKeepsItsConnectionAndShowsItsDatabase)
{
    QTemporaryDir dir;
    FormDescription form;
    form.server = QStringLiteral("host=db.example.org user=anna dbname='sales 2026' password=x");
    form.table = QStringLiteral("ORDERS");
    const QString path = dir.filePath(QStringLiteral("server.ini"));
    ASSERT_TRUE(saveFormDescription(form, path).isOk());
    QStringList warnings;
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    ASSERT_TRUE(read.isOk()) << read.status().message().toStdString();
    EXPECT_EQ(read.value().server, form.server);
    EXPECT_TRUE(read.value().isServer());
    EXPECT_EQ(read.value().databaseLabel(), QStringLiteral("PostgreSQL sales 2026"));

    EXPECT_EQ(serverDatabaseName(QStringLiteral("dbname=crm host=/tmp")), QStringLiteral("crm"));
    EXPECT_EQ(serverDatabaseName(QStringLiteral("host=x mydbname=no")), QString());
    EXPECT_EQ(serverDatabaseName(QStringLiteral("dbname = 'it\\'s' user=a")),
              QStringLiteral("it's"));
    EXPECT_EQ(serverDatabaseName(QStringLiteral("postgresql://anna@db:5433/crm?sslmode=require")),
              QStringLiteral("crm"));
    EXPECT_EQ(serverDatabaseName(QStringLiteral("postgres://db")), QString());
}

TEST(FormDescription, ATableDescribesItsOwnForm)
{
    const QList<FieldInfo> fields{
        { QStringLiteral("CODE"), FieldType::Text, 10, 0 },
        { QStringLiteral("LASTNAME"), FieldType::Text, 30, 0 },
        { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
        { QStringLiteral("AMOUNT"), FieldType::Numeric, 9, 2 },
        { QStringLiteral("VIP"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("PLLASTREV"), FieldType::Text, 30, 0 },
    };
    const FormDescription form = describeTable(fields, QStringLiteral("Clients"));
    // No ID field: the first field is the key, which the user types.
    EXPECT_EQ(form.idField, QStringLiteral("CODE"));
    EXPECT_FALSE(form.generateIDs);
    EXPECT_EQ(form.descField, QStringLiteral("LASTNAME"));
    EXPECT_EQ(
        form.sorts,
        (QList<QPair<QString, QString>>{ { QStringLiteral("Code"), QStringLiteral("CODE") },
                                         { QStringLiteral("Lastname"), QStringLiteral("LASTNAME") },
                                         { QStringLiteral("Born"), QStringLiteral("BORN") },
                                         { QStringLiteral("Amount"), QStringLiteral("AMOUNT") } }));
    ASSERT_EQ(form.rows.size(), 4); // the audit stamp is the navigator's
    EXPECT_EQ(form.rows[0].maxLength, 10);
    EXPECT_EQ(form.rows[2].format, QStringLiteral("mm/dd/yyyy"));
    EXPECT_EQ(form.rows[2].mode, QStringLiteral("Date"));
    EXPECT_EQ(form.rows[3].mode, QStringLiteral("Number"));
    EXPECT_EQ(form.rows[3].maxLength, 9);
    ASSERT_EQ(form.checks.size(), 1);
    EXPECT_EQ(form.checks[0].field, QStringLiteral("VIP"));
}

TEST(FormDescription, TheKeyIsMadeOnlyWhereAMadeIDFits)
{
    const QList<FieldInfo> withID{ { QStringLiteral("NAME"), FieldType::Text, 30, 0 },
                                   { QStringLiteral("id"), FieldType::Text, 10, 0 } };
    FormDescription form = describeTable(withID, QStringLiteral("T"));
    EXPECT_EQ(form.idField, QStringLiteral("id"));
    EXPECT_TRUE(form.generateIDs);
    EXPECT_EQ(form.sorts.first(), qMakePair(QStringLiteral("ID"), QStringLiteral("id")));
    // Too short for "PLE" and seven characters, or a number: typed.
    const QList<FieldInfo> shortID{ { QStringLiteral("ID"), FieldType::Text, 6, 0 } };
    EXPECT_FALSE(describeTable(shortID, QStringLiteral("T")).generateIDs);
    const QList<FieldInfo> numberID{ { QStringLiteral("ID"), FieldType::Numeric, 19, 0 } };
    EXPECT_FALSE(describeTable(numberID, QStringLiteral("T")).generateIDs);
    // A unique index tag names the key of a table without an ID field.
    const QList<FieldInfo> coded{ { QStringLiteral("NAME"), FieldType::Text, 30, 0 },
                                  { QStringLiteral("CODE"), FieldType::Text, 8, 0 } };
    const QList<IndexTag> tags{ { QStringLiteral("BYNAME"), QStringLiteral("UPPER(name)"), false },
                                { QStringLiteral("CODE"), QStringLiteral("code"), true } };
    form = describeTable(coded, QStringLiteral("T"), tags);
    EXPECT_EQ(form.idField, QStringLiteral("CODE"));
    EXPECT_FALSE(form.generateIDs);
    EXPECT_EQ(form.sorts,
              (QList<QPair<QString, QString>>{
                  { QStringLiteral("Code"), QStringLiteral("CODE") },
                  { QStringLiteral("Byname (index)"), QStringLiteral("NAME") } }));
    // A description's IDField and GenerateIDs=No are kept.
    FormDescription described;
    described.idField = QStringLiteral("NAME");
    described.generateIDs = false;
    chooseKey(described, withID, {});
    EXPECT_EQ(described.idField, QStringLiteral("NAME"));
    EXPECT_FALSE(described.generateIDs);
}

TEST(FormDescription, TableOptionsAreReadWrittenAndCheckedNotFatal)
{
    QTemporaryDir dir;
    FormDescription form;
    form.file = dir.filePath(QStringLiteral("T.DBF"));
    form.generateIDs = false;
    form.codePage = 850;
    form.collate = QStringLiteral("General");
    const QString path = dir.filePath(QStringLiteral("form.ini"));
    ASSERT_TRUE(saveFormDescription(form, path).isOk());
    QStringList warnings;
    Result<FormDescription> back = loadFormDescription(path, &warnings);
    ASSERT_TRUE(back.isOk());
    EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
    EXPECT_FALSE(back.value().generateIDs);
    EXPECT_EQ(back.value().codePage, 850);
    EXPECT_EQ(back.value().collate, QStringLiteral("General"));
    EXPECT_EQ(back.value().source, path);

    writeBytes(path,
               "[FORM]\r\nFile=T.DBF\r\nGenerateIDs=maybe\r\nCodePage=cyrillic\r\n"
               "Collate=alphabetical\r\n");
    warnings.clear();
    back = loadFormDescription(path, &warnings);
    ASSERT_TRUE(back.isOk());
    EXPECT_EQ(
        warnings,
        (QStringList{
            QStringLiteral("GenerateIDs \"maybe\" ignored: write Yes or No"),
            QStringLiteral("CodePage \"cyrillic\" ignored: write a code page number such as 850"),
            QStringLiteral("Collate \"alphabetical\" ignored: write General or Machine") }));
    EXPECT_TRUE(back.value().generateIDs);
    EXPECT_EQ(back.value().codePage, 0);
    EXPECT_TRUE(back.value().collate.isEmpty());
}

// A description of `rows` rows as users write them: ~26 bytes a row.
QByteArray manyRows(int rows)
{
    QByteArray text = "[FORM]\r\nFile=/data/T.DBF\r\nDesc=Many\r\n";
    text.reserve(rows * 24 + 64);
    for (int i = 1; i <= rows; ++i) {
        const QByteArray n = QByteArray::number(i);
        text += "[ROW" + n + "]\r\nField=F" + n + "\r\n";
    }
    return text;
}

TEST(FormDescription, AHundredThousandRowsAreReadWholeAndAtOnce)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("many.ini"));
    const QByteArray text = manyRows(100000);
    ASSERT_GT(text.size(), 2000000);
    writeBytes(path, text);
    QStringList warnings;
    QElapsedTimer timer;
    timer.start();
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    // Reading every value from the file again took over two minutes; parsed once it takes
    // a fraction of a second. The bound leaves room for a slow, busy machine.
    EXPECT_LT(timer.elapsed(), 10000);
    ASSERT_TRUE(read.isOk()) << read.status().message().toStdString();
    EXPECT_TRUE(warnings.isEmpty());
    ASSERT_EQ(read.value().rows.size(), 100000);
    EXPECT_EQ(read.value().rows.first().field, QStringLiteral("F1"));
    EXPECT_EQ(read.value().rows[49999].field, QStringLiteral("F50000"));
    EXPECT_EQ(read.value().rows.last().field, QStringLiteral("F100000"));
}

TEST(FormDescription, OversizeFilesAndValuesAreRefusedNeverCut)
{
    QTemporaryDir dir;
    // A file over 16 MB is refused unread, whatever it begins with.
    const QString huge = dir.filePath(QStringLiteral("huge.ini"));
    QByteArray text = "[FORM]\r\nFile=/data/T.DBF\r\n[ROW1]\r\nField=NAME\r\n";
    text += QByteArray(kMaxSettingsFileBytes + 1 - text.size(), ' ');
    writeBytes(huge, text);
    QStringList warnings;
    const Status refused = loadFormDescription(huge, &warnings).status();
    EXPECT_EQ(refused.message(), huge + QStringLiteral(" is larger than 16 MB and was not read"));
    EXPECT_NE(refused.code(), Status::Code::Ok);
    text.chop(1); // at the limit it is read
    writeBytes(huge, text);
    ASSERT_TRUE(loadFormDescription(huge, &warnings).isOk());

    // Values past the settings reader's 1,998 characters are read whole; values past 64 KB
    // are refused with a warning.
    QByteArray sorts;
    for (int i = 1; i <= 200; ++i)
        sorts += "|Sort " + QByteArray::number(i) + ":FIELD" + QByteArray::number(i);
    ASSERT_GT(sorts.size(), 1998);
    const QString path = dir.filePath(QStringLiteral("long.ini"));
    writeBytes(path,
               "[FORM]\r\nFile=/data/T.DBF\r\nSorts=" + sorts.mid(1) + "\r\n[ROW1]\r\nCaption="
                   + QByteArray(kMaxSettingsValueChars + 1, 'c') + "\r\nField=NAME\r\n");
    warnings.clear();
    Result<FormDescription> read = loadFormDescription(path, &warnings);
    ASSERT_TRUE(read.isOk());
    ASSERT_EQ(read.value().sorts.size(), 200);
    EXPECT_EQ(read.value().sorts.last(),
              qMakePair(QStringLiteral("Sort 200"), QStringLiteral("FIELD200")));
    EXPECT_EQ(
        warnings,
        QStringList{ QStringLiteral("Caption in [ROW1] is longer than 64 KB and was not read") });
    ASSERT_EQ(read.value().rows.size(), 1);
    EXPECT_EQ(read.value().rows[0].caption, QString());
}

} // namespace
} // namespace plx::form
