// apps/plxform/tests/formdescription_test.cpp: form descriptions written, edited by hand
// and read back; files that are wrong in every way a user can make them wrong.
#include "apps/plxform/formdescription.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Readable QString values in failure messages.
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace plx::form {
namespace {

void writeText(const QString &path, const QByteArray &text)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
}

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
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    file.close();
    text.replace("Caption=Opened", "Caption=Opened on");
    writeText(path, text);

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
    writeText(path,
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

TEST(FormDescription, FilesThatAreNoDescriptionAreRefusedWithAReason)
{
    QTemporaryDir dir;
    QStringList warnings;
    EXPECT_EQ(
        loadFormDescription(dir.filePath(QStringLiteral("missing.ini")), &warnings).status().code(),
        Status::Code::NotFound);
    const QString binary = dir.filePath(QStringLiteral("binary.ini"));
    writeText(binary, QByteArray("\x00\x01\x02[FORM]\xff", 9));
    EXPECT_EQ(loadFormDescription(binary, &warnings).status().code(), Status::Code::Corrupt);
    const QString noForm = dir.filePath(QStringLiteral("noform.ini"));
    writeText(noForm, "just some text\nwithout sections");
    EXPECT_EQ(loadFormDescription(noForm, &warnings).status().code(), Status::Code::Corrupt);
    const QString both = dir.filePath(QStringLiteral("both.ini"));
    writeText(both, "[FORM]\nFile=a.dbf\nDatabase=b.sqlite\nTable=T\n");
    EXPECT_EQ(loadFormDescription(both, &warnings).status().code(), Status::Code::InvalidArgument);
    const QString noTable = dir.filePath(QStringLiteral("notable.ini"));
    writeText(noTable, "[FORM]\nDatabase=b.sqlite\n");
    EXPECT_EQ(loadFormDescription(noTable, &warnings).status().code(),
              Status::Code::InvalidArgument);
}

TEST(FormDescription, ATableDescribesItsOwnForm)
{
    const QList<FieldInfo> fields{
        { QStringLiteral("CODE"), FieldType::Text, 10, 0 },
        { QStringLiteral("LASTNAME"), FieldType::Text, 30, 0 },
        { QStringLiteral("BORN"), FieldType::Date, 8, 0 },
        { QStringLiteral("VIP"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("PLLASTREV"), FieldType::Text, 30, 0 },
    };
    const FormDescription form = describeTable(fields, QStringLiteral("Clients"));
    EXPECT_EQ(form.idField, QStringLiteral("CODE"));
    EXPECT_EQ(form.descField, QStringLiteral("LASTNAME"));
    ASSERT_EQ(form.sorts.size(), 2);
    EXPECT_EQ(form.sorts[1].second, QStringLiteral("LASTNAME"));
    ASSERT_EQ(form.rows.size(), 3); // the audit stamp is the navigator's
    EXPECT_EQ(form.rows[2].format, QStringLiteral("mm/dd/yyyy"));
    ASSERT_EQ(form.checks.size(), 1);
    EXPECT_EQ(form.checks[0].field, QStringLiteral("VIP"));
}

} // namespace
} // namespace plx::form
