// apps/plxform/sampledata.cpp
#include "apps/plxform/sampledata.h"

#include "services/ini.h"
#include "services/recordsource/database.h"

#include <QDate>
#include <QDir>
#include <QFile>

#include <random>

namespace plx::form {

namespace {

QList<FieldInfo> sampleFields()
{
    return {
        { QStringLiteral("ID"), FieldType::Text, 10, 0 },
        { QStringLiteral("NAME"), FieldType::Text, 40, 0 },
        { QStringLiteral("CITY"), FieldType::Text, 24, 0 },
        { QStringLiteral("STATE"), FieldType::Text, 2, 0 },
        { QStringLiteral("PHONE"), FieldType::Text, 14, 0 },
        { QStringLiteral("BEDS"), FieldType::Numeric, 5, 0 },
        { QStringLiteral("RATE"), FieldType::Numeric, 8, 2 },
        { QStringLiteral("OPENED"), FieldType::Date, 8, 0 },
        { QStringLiteral("ACTIVE"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("MEDICARE"), FieldType::Boolean, 1, 0 },
        { QStringLiteral("MEDNUM"), FieldType::Text, 10, 0 },
        { QStringLiteral("NOTES"), FieldType::Memo, 10, 0 },
        { QStringLiteral("PLSTART"), FieldType::Text, 30, 0 },
        { QStringLiteral("PLLASTREV"), FieldType::Text, 30, 0 },
        { QStringLiteral("PROGRAMS"), FieldType::Text, 30, 0 },
    };
}

// The care programs a facility runs: a value-item field, its values picked from the list
// the sample keeps in VALUELISTS.INI.
const char *const kProgramList = "SNF {Skilled nursing}|REHAB {Rehabilitation}|MC {Memory care}|"
                                 "AL {Assisted living}|HOSP {Hospice}";

// A few programs per record, taken from the record number alone, so the other fields come
// out as they did before facilities had programs.
QString programsOf(int record)
{
    static const char *const programs[] = { "SNF", "REHAB", "MC", "AL", "HOSP" };
    const quint32 mixed = quint32(record + 1) * 2654435761U; // Knuth's multiplicative hash
    QStringList chosen;
    for (int p = 0; p < 5; ++p)
        if ((mixed >> (8 + 5 * p) & 3U) == 0)
            chosen << QString::fromLatin1(programs[p]);
    return chosen.join(QLatin1Char(','));
}

// Deterministic records that look like a care-facility register.
QList<QVariantList> sampleRows()
{
    static const char *const kinds[] = { "Care Center",   "Nursing Home",  "Rehab Center",
                                         "Senior Living", "Health Center", "Manor",
                                         "Gardens",       "Residence" };
    static const char *const names[] = { "Maple",      "Oak",       "Riverside",  "Lakeview",
                                         "Sunrise",    "Hillcrest", "Pine",       "Cedar",
                                         "Willow",     "Brookside", "Meadow",     "Harbor",
                                         "Valley",     "Summit",    "Fairview",   "Green Acres",
                                         "St. Mary's", "Smith",     "Smithfield", "Saint Luke's",
                                         "Evergreen",  "Heritage",  "Liberty",    "Magnolia" };
    static const char *const cities[][2] = {
        { "Springfield", "IL" }, { "Madison", "WI" }, { "Columbus", "OH" }, { "Salem", "OR" },
        { "Austin", "TX" },      { "Boston", "MA" },  { "Denver", "CO" },   { "Albany", "NY" },
        { "Raleigh", "NC" },     { "Dover", "DE" },   { "Helena", "MT" },   { "Boise", "ID" }
    };
    static const char *const notes[] = {
        "Inspected without findings.", "Kitchen renovated; re-inspection due.",
        "Accepts short-term rehabilitation stays.\r\nParking behind the east wing.",
        "Memory-care unit on the second floor."
    };
    std::mt19937 random(20261123);
    auto below = [&random](int n) { return int(random() % unsigned(n)); };
    const QString digits = QStringLiteral("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    QList<QVariantList> rows;
    for (int i = 0; i < kSampleRecords; ++i) {
        // IDs: "PLE" + a 7-character key, as the navigator makes them.
        QString key;
        for (int n = i * 7919 + 104729, d = 0; d < 7; ++d, n /= 36)
            key.prepend(digits[n % 36]);
        const auto &city = cities[below(12)];
        const QString name = QString::fromLatin1(names[below(24)]) + QLatin1Char(' ')
            + QString::fromLatin1(kinds[below(8)]);
        const QDate opened = QDate(1960, 1, 1).addDays(below(23000));
        const bool medicare = below(3) == 0;
        const QString stamp = opened.addDays(below(300)).toString(QStringLiteral("MM/dd/yyyy"))
            + QStringLiteral(" 09:15:00 ADMIN");
        rows.append({ QStringLiteral("PLE") + key, name, QString::fromLatin1(city[0]),
                      QString::fromLatin1(city[1]),
                      QStringLiteral("(%1) 555-%2")
                          .arg(200 + below(700))
                          .arg(below(10000), 4, 10, QLatin1Char('0')),
                      20 + below(280), 150.0 + below(40000) / 100.0, opened, below(10) != 0,
                      medicare,
                      medicare ? QVariant(QString::number(100000 + below(900000))) : QVariant(),
                      below(3) == 0 ? QVariant(QString::fromLatin1(notes[below(4)])) : QVariant(),
                      stamp, stamp, programsOf(i) });
    }
    return rows;
}

// Both copies are made through the engines' own table writers, as a host would make them.
Status writeTable(const QString &name, const QString &connect, const QList<QVariantList> &rows)
{
    Result<std::unique_ptr<Database>> db = OpenDatabase(name, true, false, connect);
    if (!db.isOk())
        return db.status();
    if (Status s = db.value()->createTable(QStringLiteral("FACILITY"), sampleFields()); !s.isOk())
        return s;
    Status s = db.value()->appendRecords(QStringLiteral("FACILITY"), rows);
    // An index on the ID and on each of the form's sorts, where the engine keeps indexes,
    // so that look-ups by ID and sort changes are answered from them.
    const struct
    {
        const char *name;
        QStringList fields;
    } indexes[] = {
        { "FACILITY_ID", { QStringLiteral("ID") } },
        { "FACILITY_NAME", { QStringLiteral("NAME"), QStringLiteral("CITY") } },
        { "FACILITY_CITY", { QStringLiteral("CITY"), QStringLiteral("NAME") } },
        { "FACILITY_STATE", { QStringLiteral("STATE"), QStringLiteral("CITY") } },
    };
    for (const auto &index : indexes) {
        if (!s.isOk())
            break;
        const Status made = db.value()->createIndex(QStringLiteral("FACILITY"),
                                                    QString::fromLatin1(index.name), index.fields);
        if (made.code() != Status::Code::NotSupported)
            s = made;
    }
    db.value()->Close();
    return s;
}

void writeFilters(const QString &directory)
{
    // Each saved filter keeps its condition under "Where" (the text after WHERE).
    const QString file = directory + QStringLiteral("/HBFiltersPLX.INI");
    const struct
    {
        const char *name, *where;
    } filters[] = {
        { "Active facilities", "ACTIVE = True" },
        { "Medicare, 100 beds or more", "MEDICARE = True And BEDS >= 100" },
        { "Texas and Ohio", "STATE In ('TX', 'OH')" },
        { "Opened since 2000", "OPENED >= #01/01/2000#" },
    };
    for (const auto &f : filters)
        writeINI(QString::fromLatin1(f.name), QStringLiteral("Where"), file,
                 QString::fromLatin1(f.where));
}

// The browse grids' first columns: what a user of a facility register looks across first,
// sized for the values (widths in twips). Kept in plxform's user settings, which live in
// the work directory beside the sample; a layout the user already has stays.
void writeFirstGridLayouts(const QString &settingsFile)
{
    const QString common =
        QStringLiteral("NAME,Facility,3600|CITY,City,2100|STATE,State,700|PHONE,Phone,1900|");
    const struct
    {
        QString key, value;
    } layouts[] = {
        { QStringLiteral("BrowseGridCol Facilities"),
          common
              + QStringLiteral(
                  "BEDS,Beds,800|RATE,Rate,1100|OPENED,Opened,1300|ACTIVE,Active,900|ID,ID,1600") },
        { QStringLiteral("BrowseSearchCol Facilities"), common + QStringLiteral("ID,ID,1600") },
    };
    for (const auto &layout : layouts) {
        QString existing;
        readINI(QStringLiteral("CONFIG"), layout.key, settingsFile, existing, QString());
        if (existing.isEmpty())
            writeINI(QStringLiteral("CONFIG"), layout.key, settingsFile, layout.value);
    }
}

void writeFormFile(const QString &path, const QString &table)
{
    auto set = [&path](const char *section, const char *key, const QString &value) {
        writeINI(QString::fromLatin1(section), QString::fromLatin1(key), path, value);
    };
    set("FORM", "File", table);
    set("FORM", "Desc", QStringLiteral("Facilities"));
    set("FORM", "IDField", QStringLiteral("ID"));
    set("FORM", "DescField", QStringLiteral("NAME"));
    set("FORM", "Sorts", QStringLiteral("Name:NAME, CITY|City:CITY, NAME|State:STATE, CITY|ID:ID"));
    set("FORM", "Required", QStringLiteral("NAME, CITY"));
    const struct
    {
        const char *caption, *field, *format, *mode, *max;
    } rows[] = {
        { "ID", "ID", "", "Upper", "" },
        { "Name", "NAME", "", "", "" },
        { "City", "CITY", "", "", "" },
        { "State", "STATE", "", "Upper", "2" },
        { "Phone", "PHONE", "", "", "" },
        { "Beds", "BEDS", "#,##0", "Digits", "" },
        { "Daily rate", "RATE", "0.00", "Number", "" },
        { "Opened", "OPENED", "mm/dd/yyyy", "Date", "" },
        { "Notes", "NOTES", "", "", "" },
    };
    int n = 0;
    for (const auto &r : rows) {
        const QString section = QStringLiteral("ROW%1").arg(++n);
        writeINI(section, QStringLiteral("Caption"), path, QString::fromLatin1(r.caption));
        writeINI(section, QStringLiteral("Field"), path, QString::fromLatin1(r.field));
        if (*r.format)
            writeINI(section, QStringLiteral("Format"), path, QString::fromLatin1(r.format));
        if (*r.mode)
            writeINI(section, QStringLiteral("Mode"), path, QString::fromLatin1(r.mode));
        if (*r.max)
            writeINI(section, QStringLiteral("MaxLength"), path, QString::fromLatin1(r.max));
    }
    writeINI(QStringLiteral("CHECK1"), QStringLiteral("Caption"), path, QStringLiteral("Active"));
    writeINI(QStringLiteral("CHECK1"), QStringLiteral("Field"), path, QStringLiteral("ACTIVE"));
    // The Medicare flag with the provider number that belongs to it.
    writeINI(QStringLiteral("PAIR1"), QStringLiteral("Caption"), path,
             QStringLiteral("Medicare certified"));
    writeINI(QStringLiteral("PAIR1"), QStringLiteral("Field"), path, QStringLiteral("MEDICARE"));
    writeINI(QStringLiteral("PAIR1"), QStringLiteral("Details"), path,
             QStringLiteral("Provider no.:MEDNUM"));
    // The programs, picked from the list kept beside the description.
    const QString values = QStringLiteral("VALUES1");
    writeINI(values, QStringLiteral("Caption"), path, QStringLiteral("Programs"));
    writeINI(values, QStringLiteral("Field"), path, QStringLiteral("PROGRAMS"));
    writeINI(values, QStringLiteral("ListFile"), path, kSampleListFile);
    writeINI(values, QStringLiteral("ListSection"), path, kSampleListSection);
    writeINI(values, QStringLiteral("ListKey"), path, kSampleListKey);
}

} // namespace

Result<SamplePaths> ensureSample(const QString &directory)
{
    SamplePaths paths;
    const QString root = directory + QStringLiteral("/sample");
    paths.foxProTable = root + QStringLiteral("/foxpro/FACILITY.DBF");
    paths.sqliteFile = root + QStringLiteral("/facility.sqlite");
    paths.formFile = root + QStringLiteral("/facility.ini");
    paths.listFile = root + QLatin1Char('/') + kSampleListFile;
    // A sample made before it had a list is made again, programs and all.
    if (QFile::exists(paths.foxProTable) && QFile::exists(paths.sqliteFile)
        && QFile::exists(paths.formFile) && QFile::exists(paths.listFile))
        return paths;

    const QList<QVariantList> rows = sampleRows();
    const QString partial = root + QStringLiteral(".part");
    QDir(partial).removeRecursively();
    if (!QDir().mkpath(partial + QStringLiteral("/foxpro")))
        return Status(Status::Code::IoError, QStringLiteral("cannot create %1").arg(partial));
    if (Status s =
            writeTable(partial + QStringLiteral("/foxpro"), QStringLiteral("FoxPro 2.6"), rows);
        !s.isOk())
        return s;
    if (Status s = writeTable(partial + QStringLiteral("/facility.sqlite"),
                              QStringLiteral(";Create=Yes"), rows);
        !s.isOk())
        return s;
    writeFilters(partial + QStringLiteral("/foxpro"));
    writeFilters(partial);
    writeFormFile(partial + QStringLiteral("/facility.ini"), paths.foxProTable);
    writeINI(kSampleListSection, kSampleListKey, partial + QLatin1Char('/') + kSampleListFile,
             QString::fromLatin1(kProgramList));
    QDir(root).removeRecursively();
    if (!QDir().rename(partial, root))
        return Status(Status::Code::IoError,
                      QStringLiteral("cannot rename %1 to %2").arg(partial, root));
    writeFirstGridLayouts(directory + QStringLiteral("/PLXFORM.INI"));
    return paths;
}

} // namespace plx::form
