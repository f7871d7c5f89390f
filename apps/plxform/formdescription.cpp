// apps/plxform/formdescription.cpp
#include "apps/plxform/formdescription.h"

#include "services/ini.h"
#include "services/inisnapshot.h"
#include "services/paths.h"
#include "services/texthelpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace plx::form {

namespace {

const QSet<QString> kFormKeys{ QStringLiteral("FILE"),     QStringLiteral("DATABASE"),
                               QStringLiteral("TABLE"),    QStringLiteral("DESC"),
                               QStringLiteral("IDFIELD"),  QStringLiteral("DESCFIELD"),
                               QStringLiteral("PARENTID"), QStringLiteral("SORTS"),
                               QStringLiteral("REQUIRED"), QStringLiteral("GENERATEIDS"),
                               QStringLiteral("CODEPAGE"), QStringLiteral("COLLATE") };
const QSet<QString> kRowKeys{ QStringLiteral("CAPTION"),   QStringLiteral("FIELD"),
                              QStringLiteral("FORMAT"),    QStringLiteral("MODE"),
                              QStringLiteral("MAXLENGTH"), QStringLiteral("LABELWIDTH") };
const QSet<QString> kCheckKeys{ QStringLiteral("CAPTION"), QStringLiteral("FIELD") };
const QSet<QString> kPairKeys{ QStringLiteral("CAPTION"), QStringLiteral("FIELD"),
                               QStringLiteral("DETAILS") };
const QSet<QString> kValueRowKeys{ QStringLiteral("CAPTION"), QStringLiteral("FIELD"),
                                   QStringLiteral("LISTFILE"), QStringLiteral("LISTSECTION"),
                                   QStringLiteral("LISTKEY") };

// The description, parsed once: every value is a look-up, not a read of the whole file.
// Values are whole (no 1,998-character cut); one beyond kMaxSettingsValueChars is refused
// with a warning and read as empty, never cut.
class DescriptionReader
{
public:
    DescriptionReader(const QByteArray &text, QStringList *warnings)
        : m_ini(IniSnapshot::parse(text)), m_warnings(warnings)
    {
    }

    QString value(const QString &section, const char *key) const
    {
        const QString name = QString::fromLatin1(key);
        QString v = m_ini.value(section, name);
        if (v.size() > kMaxSettingsValueChars) {
            m_warnings->append(QStringLiteral("%1 in [%2] is longer than %3 KB and was not read")
                                   .arg(name, section)
                                   .arg(kMaxSettingsValueChars / 1024));
            v.clear();
        }
        return v;
    }
    const QList<IniSnapshot::Section> &sections() const { return m_ini.sections(); }
    QStringList *warnings() const { return m_warnings; }

private:
    IniSnapshot m_ini;
    QStringList *m_warnings;
};

bool isNamelike(const FieldInfo &f)
{
    const QString n = f.name.toUpper();
    return f.type == FieldType::Text
        && (n.contains(QLatin1String("NAME")) || n == QLatin1String("CITY")
            || n == QLatin1String("COMPANY") || n == QLatin1String("TITLE")
            || n == QLatin1String("DESC"));
}

using Sections = QList<IniSnapshot::Section>;

constexpr int kKeyLength = 7; // the part of a made ID the navigator counts up
constexpr int kIntegerWidth = 11; // -2147483648
constexpr int kDateWidth = 10; // mm/dd/yyyy
constexpr int kDateTimeWidth = 19; // mm/dd/yyyy hh:mm:ss

// "CALL_DATE" is shown as "Call date".
QString captionOf(const QString &fieldName)
{
    QString caption = fieldName.left(1).toUpper() + fieldName.mid(1).toLower();
    caption.replace(QLatin1Char('_'), QLatin1Char(' '));
    return caption.trimmed();
}

const FieldInfo *fieldNamed(const QList<FieldInfo> &fields, const QString &name)
{
    for (const FieldInfo &f : fields)
        if (f.name.compare(name, Qt::CaseInsensitive) == 0)
            return &f;
    return nullptr;
}

// PLSTART and PLLASTREV: written by the navigator, neither typed nor ordered by.
bool isAuditStamp(const FieldInfo &f)
{
    const QString upper = f.name.toUpper();
    return upper == QLatin1String("PLSTART") || upper == QLatin1String("PLLASTREV");
}

bool isSortable(FieldType type)
{
    switch (type) {
    case FieldType::Text:
    case FieldType::Integer:
    case FieldType::Numeric:
    case FieldType::Double:
    case FieldType::Date:
    case FieldType::DateTime: return true;
    case FieldType::Memo:
    case FieldType::Boolean:
    case FieldType::Binary: break;
    }
    return false;
}

// The key first, then each index tag that orders by fields, then each field that can be
// ordered by; an order offered once is not offered again under another name.
QList<QPair<QString, QString>> sortsFor(const FormDescription &form, const QList<FieldInfo> &fields,
                                        const QList<IndexTag> &tags)
{
    QList<QPair<QString, QString>> sorts;
    QSet<QString> offered;
    auto offer = [&](const QString &name, const QString &list) {
        if (!list.isEmpty() && !offered.contains(list.toUpper())) {
            offered.insert(list.toUpper());
            sorts.append({ name, list });
        }
    };
    if (!form.idField.isEmpty())
        offer(form.generateIDs ? QStringLiteral("ID") : captionOf(form.idField), form.idField);
    for (const IndexTag &tag : tags)
        offer(captionOf(tag.name) + QStringLiteral(" (index)"),
              tagFields(tag.expression, fields).join(QStringLiteral(", ")));
    for (const FieldInfo &f : fields)
        if (isSortable(f.type) && !isAuditStamp(f))
            offer(captionOf(f.name), f.name);
    return sorts;
}

// Warns of every section and key plxform does not know; true when there is a [FORM].
bool checkKnownKeys(const Sections &sections, QStringList *warnings)
{
    bool hasForm = false;
    for (const auto &[section, keys] : sections) {
        const QString upper = section.toUpper();
        const QSet<QString> *known = upper == QLatin1String("FORM") ? &kFormKeys
            : upper.startsWith(QLatin1String("ROW"))                ? &kRowKeys
            : upper.startsWith(QLatin1String("CHECK"))              ? &kCheckKeys
            : upper.startsWith(QLatin1String("PAIR"))               ? &kPairKeys
            : upper.startsWith(QLatin1String("VALUES"))             ? &kValueRowKeys
                                                                    : nullptr;
        hasForm = hasForm || upper == QLatin1String("FORM");
        if (!known) {
            warnings->append(QStringLiteral("Unknown section [%1] ignored").arg(section));
            continue;
        }
        for (const QString &key : keys)
            if (!known->contains(key.toUpper()))
                warnings->append(
                    QStringLiteral("Unknown key \"%1\" in [%2] ignored").arg(key, section));
    }
    return hasForm;
}

// GenerateIDs, CodePage and Collate; a value plxform cannot use is warned of and the
// default kept.
void readTableOptions(const DescriptionReader &in, FormDescription &form)
{
    QStringList *warnings = in.warnings();
    const QString f = QStringLiteral("FORM");
    const QString generate = in.value(f, "GenerateIDs").trimmed();
    if (!generate.isEmpty()) {
        const QString upper = generate.toUpper();
        if (upper == QLatin1String("YES") || upper == QLatin1String("TRUE")
            || upper == QLatin1String("1"))
            form.generateIDs = true;
        else if (upper == QLatin1String("NO") || upper == QLatin1String("FALSE")
                 || upper == QLatin1String("0"))
            form.generateIDs = false;
        else
            warnings->append(
                QStringLiteral("GenerateIDs \"%1\" ignored: write Yes or No").arg(generate));
    }
    const QString codePage = in.value(f, "CodePage").trimmed();
    if (!codePage.isEmpty()) {
        if (const std::optional<int> cp = parseCodePage(codePage))
            form.codePage = *cp;
        else
            warnings->append(
                QStringLiteral("CodePage \"%1\" ignored: write a code page number such as 850")
                    .arg(codePage));
    }
    const QString collate = in.value(f, "Collate").trimmed();
    if (!collate.isEmpty()) {
        if (const std::optional<QString> c = parseCollate(collate))
            form.collate = *c;
        else
            warnings->append(
                QStringLiteral("Collate \"%1\" ignored: write General or Machine").arg(collate));
    }
}

// The [FORM] section: the table and the navigator's settings. Naming neither or both of a
// table file and a database is an error, as is a database without a table.
Status readFormSection(const DescriptionReader &in, const QString &path, FormDescription &form)
{
    QStringList *warnings = in.warnings();
    const QString f = QStringLiteral("FORM");
    form.file = in.value(f, "File");
    form.database = in.value(f, "Database");
    form.server = in.value(f, "Server");
    form.table = in.value(f, "Table");
    form.desc = in.value(f, "Desc");
    form.idField = in.value(f, "IDField");
    form.descField = in.value(f, "DescField");
    const QString parent = in.value(f, "ParentID");
    if (!parent.isEmpty())
        form.parentID = parent;
    form.sorts = readSorts(in.value(f, "Sorts"), warnings);
    for (const QString &field : in.value(f, "Required").split(QLatin1Char(','), Qt::SkipEmptyParts))
        form.required << field.trimmed();
    readTableOptions(in, form);
    if (int(!form.file.isEmpty()) + int(!form.database.isEmpty()) + int(form.isServer()) != 1)
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("%1 must name one of File= (a FoxPro table), Database= "
                                     "(SQLite) or Server= (PostgreSQL)")
                          .arg(path));
    if (form.file.isEmpty() && form.table.isEmpty())
        return Status(Status::Code::InvalidArgument,
                      QStringLiteral("%1 names a database but no Table=").arg(path));
    return Status::ok();
}

// A MaxLength or LabelWidth: empty is 0, and so is anything that is not a count (with
// `problem` warned of, naming the value and the section).
int readCount(const QString &text, const QString &section, const QString &problem,
              QStringList *warnings)
{
    bool ok = true;
    const int count = text.isEmpty() ? 0 : text.toInt(&ok);
    if (ok && count >= 0)
        return count;
    warnings->append(problem.arg(text, section));
    return 0;
}

void readRow(const DescriptionReader &in, const QString &section, FormDescription &form)
{
    QStringList *warnings = in.warnings();
    RowDescription row{ in.value(section, "Caption"), in.value(section, "Field"),
                        in.value(section, "Format"), in.value(section, "Mode") };
    row.maxLength = readCount(
        in.value(section, "MaxLength"), section,
        QStringLiteral("MaxLength \"%1\" in [%2] is not a length; the field's size is used"),
        warnings);
    row.labelWidth =
        readCount(in.value(section, "LabelWidth"), section,
                  QStringLiteral("LabelWidth \"%1\" in [%2] is not a width in twips"), warnings);
    if (row.field.isEmpty())
        warnings->append(QStringLiteral("[%1] names no Field; the row is left out").arg(section));
    else
        form.rows.append(row);
}

void readPair(const DescriptionReader &in, const QString &section, FormDescription &form)
{
    QStringList *warnings = in.warnings();
    PairDescription pair{ in.value(section, "Caption"), in.value(section, "Field"), {} };
    for (const QString &detail :
         in.value(section, "Details").split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const qsizetype colon = detail.indexOf(QLatin1Char(':'));
        if (colon < 1 || getLenTrim(detail.mid(colon + 1)) < 1)
            warnings->append(
                QStringLiteral("Detail \"%1\" in [%2] ignored: write it as Caption:FIELD")
                    .arg(detail.trimmed(), section));
        else
            pair.details.append({ detail.left(colon).trimmed(), detail.mid(colon + 1).trimmed() });
    }
    if (pair.field.isEmpty())
        warnings->append(QStringLiteral("[%1] names no Field; the pair is left out").arg(section));
    else
        form.pairs.append(pair);
}

void readCheck(const DescriptionReader &in, const QString &section, FormDescription &form)
{
    QStringList *warnings = in.warnings();
    CheckDescription check{ in.value(section, "Caption"), in.value(section, "Field") };
    if (check.field.isEmpty())
        warnings->append(
            QStringLiteral("[%1] names no Field; the check box is left out").arg(section));
    else
        form.checks.append(check);
}

// A list file named relative to the description lives beside it, wherever the two are
// moved together.
void readValueRow(const DescriptionReader &in, const QString &section, const QString &path,
                  FormDescription &form)
{
    QStringList *warnings = in.warnings();
    ValueRowDescription row{ in.value(section, "Caption"), in.value(section, "Field"),
                             in.value(section, "ListFile").trimmed(),
                             in.value(section, "ListSection").trimmed(),
                             in.value(section, "ListKey").trimmed() };
    if (row.field.isEmpty()) {
        warnings->append(
            QStringLiteral("[%1] names no Field; the value-item row is left out").arg(section));
        return;
    }
    if (row.listFile.isEmpty() || row.listSection.isEmpty() || row.listKey.isEmpty())
        warnings->append(
            QStringLiteral(
                "[%1] needs ListFile, ListSection and ListKey; its value list is not kept")
                .arg(section));
    else if (QFileInfo(toDiskPath(row.listFile)).isRelative())
        row.listFile = QFileInfo(path).dir().absoluteFilePath(toDiskPath(row.listFile));
    form.valueRows.append(row);
}

} // namespace

Result<FormDescription> loadFormDescription(const QString &path, QStringList *warnings)
{
    // Measured before anything is read: a runaway file would take minutes and its size in
    // memory several times over.
    if (const QString tooLarge = settingsFileSizeProblem(path); !tooLarge.isEmpty())
        return Status(Status::Code::NotSupported, tooLarge);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Status(Status::Code::NotFound,
                      QStringLiteral("cannot read the form description %1").arg(path));
    const QByteArray text = file.read(kMaxSettingsFileBytes + 1);
    if (text.size() > kMaxSettingsFileBytes) // it grew since it was measured
        return Status(Status::Code::NotSupported, settingsFileSizeProblem(path));
    if (text.contains('\0'))
        return Status(Status::Code::Corrupt, QStringLiteral("%1 is not a settings file").arg(path));
    const DescriptionReader in(text, warnings);
    if (!checkKnownKeys(in.sections(), warnings))
        return Status(Status::Code::Corrupt, QStringLiteral("%1 has no [FORM] section").arg(path));

    FormDescription form;
    form.source = path;
    if (Status s = readFormSection(in, path, form); !s.isOk())
        return s;
    // Rows, pairs and check boxes appear in the order of their sections in the file.
    for (const IniSnapshot::Section &section : in.sections()) {
        const QString upper = section.name.toUpper();
        if (upper.startsWith(QLatin1String("ROW")))
            readRow(in, section.name, form);
        else if (upper.startsWith(QLatin1String("PAIR")))
            readPair(in, section.name, form);
        else if (upper.startsWith(QLatin1String("CHECK")))
            readCheck(in, section.name, form);
        else if (upper.startsWith(QLatin1String("VALUES")))
            readValueRow(in, section.name, path, form);
    }
    return form;
}

Status saveFormDescription(const FormDescription &form, const QString &path)
{
    QFile::remove(path);
    const QString f = QStringLiteral("FORM");
    bool ok = true;
    auto set = [&](const QString &section, const char *key, const QString &v) {
        if (!v.isEmpty())
            ok = writeINI(section, QString::fromLatin1(key), path, v) && ok;
    };
    set(f, "File", form.file);
    set(f, "Database", form.database);
    set(f, "Server", form.server);
    set(f, "Table", form.table);
    set(f, "Desc", form.desc);
    set(f, "IDField", form.idField);
    set(f, "DescField", form.descField);
    set(f, "ParentID", form.parentID);
    set(f, "GenerateIDs", form.generateIDs ? QString() : QStringLiteral("No"));
    set(f, "CodePage", form.codePage > 0 ? QString::number(form.codePage) : QString());
    set(f, "Collate", form.collate);
    set(f, "Sorts", sortsText(form.sorts));
    set(f, "Required", form.required.join(QStringLiteral(", ")));
    for (qsizetype i = 0; i < form.rows.size(); ++i) {
        const RowDescription &r = form.rows[i];
        const QString section = QStringLiteral("ROW%1").arg(i + 1);
        set(section, "Caption", r.caption);
        set(section, "Field", r.field);
        set(section, "Format", r.format);
        set(section, "Mode", r.mode);
        set(section, "MaxLength", r.maxLength > 0 ? QString::number(r.maxLength) : QString());
        set(section, "LabelWidth", r.labelWidth > 0 ? QString::number(r.labelWidth) : QString());
    }
    for (qsizetype i = 0; i < form.pairs.size(); ++i) {
        const QString section = QStringLiteral("PAIR%1").arg(i + 1);
        QStringList details;
        for (const auto &[caption, field] : form.pairs[i].details)
            details << caption + QLatin1Char(':') + field;
        set(section, "Caption", form.pairs[i].caption);
        set(section, "Field", form.pairs[i].field);
        set(section, "Details", details.join(QStringLiteral(", ")));
    }
    for (qsizetype i = 0; i < form.checks.size(); ++i) {
        const QString section = QStringLiteral("CHECK%1").arg(i + 1);
        set(section, "Caption", form.checks[i].caption);
        set(section, "Field", form.checks[i].field);
    }
    for (qsizetype i = 0; i < form.valueRows.size(); ++i) {
        const ValueRowDescription &v = form.valueRows[i];
        const QString section = QStringLiteral("VALUES%1").arg(i + 1);
        set(section, "Caption", v.caption);
        set(section, "Field", v.field);
        set(section, "ListFile", v.listFile);
        set(section, "ListSection", v.listSection);
        set(section, "ListKey", v.listKey);
    }
    return ok ? Status::ok()
              : Status(Status::Code::IoError, QStringLiteral("cannot write %1").arg(path));
}

std::optional<int> parseCodePage(const QString &text)
{
    bool ok = false;
    const int codePage = text.trimmed().toInt(&ok);
    return ok && codePage > 0 && codePage <= 65535 ? std::optional<int>(codePage) : std::nullopt;
}

std::optional<QString> parseCollate(const QString &text)
{
    for (const QString &known : { QStringLiteral("General"), QStringLiteral("Machine") })
        if (known.compare(text.trimmed(), Qt::CaseInsensitive) == 0)
            return known;
    return std::nullopt;
}

RowDescription rowFor(const FieldInfo &field)
{
    RowDescription row{ captionOf(field.name), field.name, QString(), QString() };
    switch (field.type) {
    case FieldType::Text: row.maxLength = field.size; break;
    case FieldType::Integer:
        row.mode = QStringLiteral("Number");
        row.maxLength = kIntegerWidth;
        break;
    case FieldType::Numeric:
        // The field's width holds the sign and the decimal point too.
        row.mode = QStringLiteral("Number");
        row.maxLength = field.size;
        break;
    case FieldType::Double: row.mode = QStringLiteral("Number"); break;
    case FieldType::Date:
        row.mode = QStringLiteral("Date");
        row.format = QStringLiteral("mm/dd/yyyy");
        row.maxLength = kDateWidth;
        break;
    case FieldType::DateTime:
        // A date and a time of day: the Date mode would refuse the blank and the colons.
        row.format = QStringLiteral("mm/dd/yyyy");
        row.maxLength = kDateTimeWidth;
        break;
    case FieldType::Memo:
    case FieldType::Boolean:
    case FieldType::Binary: break;
    }
    return row;
}

void chooseKey(FormDescription &form, const QList<FieldInfo> &fields, const QList<IndexTag> &tags)
{
    const QString named = form.idField.isEmpty() ? QStringLiteral("ID") : form.idField.trimmed();
    if (const FieldInfo *id = fieldNamed(fields, named)) {
        form.idField = id->name;
        const qsizetype madeLength = form.parentID.size() + kKeyLength;
        form.generateIDs = form.generateIDs && id->type == FieldType::Text
            && (id->size == 0 || id->size >= madeLength);
        return;
    }
    if (!form.idField.isEmpty())
        return; // a field the table lacks: checkFieldNames() tells the user
    form.generateIDs = false;
    for (const IndexTag &tag : tags) {
        const QStringList keyFields = tagFields(tag.expression, fields);
        if (tag.unique && keyFields.size() == 1) {
            form.idField = keyFields.first();
            return;
        }
    }
    for (const FieldInfo &f : fields) {
        if (f.type != FieldType::Memo && f.type != FieldType::Binary) {
            form.idField = f.name;
            return;
        }
    }
}

FormDescription describeTable(const QList<FieldInfo> &fields, const QString &desc,
                              const QList<IndexTag> &tags)
{
    FormDescription form;
    form.desc = desc;
    chooseKey(form, fields, tags);
    for (const FieldInfo &f : fields)
        if (form.descField.isEmpty() && isNamelike(f))
            form.descField = f.name;
    for (const FieldInfo &f : fields)
        if (form.descField.isEmpty() && f.type == FieldType::Text && f.name != form.idField)
            form.descField = f.name;
    form.sorts = sortsFor(form, fields, tags);
    for (const FieldInfo &f : fields) {
        if (isAuditStamp(f))
            continue;
        if (f.type == FieldType::Boolean)
            form.checks.append({ captionOf(f.name), f.name });
        else if (f.type != FieldType::Binary)
            form.rows.append(rowFor(f));
    }
    return form;
}

QStringList checkFieldNames(const FormDescription &form, const QList<FieldInfo> &fields)
{
    QSet<QString> names;
    for (const FieldInfo &f : fields)
        names.insert(f.name.toUpper());
    QStringList problems;
    auto check = [&](const QString &field, const QString &where) {
        if (!field.isEmpty() && !names.contains(field.trimmed().toUpper()))
            problems << QStringLiteral("%1 names the field \"%2\", which the table does not have")
                            .arg(where, field);
    };
    check(form.idField, QStringLiteral("IDField"));
    check(form.descField, QStringLiteral("DescField"));
    for (const auto &[name, list] : form.sorts)
        for (const QString &field : list.split(QLatin1Char(','), Qt::SkipEmptyParts))
            check(field.trimmed(), QStringLiteral("Sort \"%1\"").arg(name));
    for (const QString &field : form.required)
        check(field, QStringLiteral("Required"));
    for (qsizetype i = 0; i < form.rows.size(); ++i)
        check(form.rows[i].field,
              QStringLiteral("Row %1 (%2)").arg(i + 1).arg(form.rows[i].caption));
    for (qsizetype i = 0; i < form.pairs.size(); ++i) {
        check(form.pairs[i].field,
              QStringLiteral("Pair %1 (%2)").arg(i + 1).arg(form.pairs[i].caption));
        for (const auto &[caption, field] : form.pairs[i].details)
            check(field, QStringLiteral("Pair %1 detail (%2)").arg(i + 1).arg(caption));
    }
    for (qsizetype i = 0; i < form.checks.size(); ++i)
        check(form.checks[i].field,
              QStringLiteral("Check box %1 (%2)").arg(i + 1).arg(form.checks[i].caption));
    for (qsizetype i = 0; i < form.valueRows.size(); ++i)
        check(form.valueRows[i].field,
              QStringLiteral("Value row %1 (%2)").arg(i + 1).arg(form.valueRows[i].caption));
    return problems;
}

QString serverDatabaseName(const QString &conninfo)
{
    const QString text = conninfo.trimmed();
    if (text.startsWith(QLatin1String("postgres"), Qt::CaseInsensitive)
        && text.contains(QLatin1String("://"))) {
        // postgresql://user@host:port/database?options
        const QString rest = text.section(QStringLiteral("://"), 1);
        const qsizetype slash = rest.indexOf(QLatin1Char('/'));
        return slash < 0 ? QString() : rest.mid(slash + 1).section(QLatin1Char('?'), 0, 0);
    }
    // key=value pairs; a value may be quoted ('my db').
    static const QRegularExpression dbname(
        QStringLiteral("(?:^|\\s)dbname\\s*=\\s*(?:'((?:[^'\\\\]|\\\\.)*)'|(\\S+))"));
    const QRegularExpressionMatch m = dbname.match(text);
    if (!m.hasMatch())
        return QString();
    if (m.captured(1).isNull())
        return m.captured(2);
    // Inside quotes a backslash keeps the character after it ('it\'s').
    static const QRegularExpression escaped(QStringLiteral("\\\\(.)"));
    return m.captured(1).replace(escaped, QStringLiteral("\\1"));
}

QString FormDescription::databaseLabel() const
{
    if (isFoxPro())
        return QFileInfo(file).fileName();
    if (isServer()) {
        const QString name = serverDatabaseName(server);
        return QStringLiteral("PostgreSQL ")
            + (name.isEmpty() ? QStringLiteral("(default)") : name);
    }
    return QFileInfo(database).fileName();
}

QList<QPair<QString, QString>> readSorts(const QString &text, QStringList *warnings)
{
    QList<QPair<QString, QString>> sorts;
    for (const QString &sort : text.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        const qsizetype colon = sort.indexOf(QLatin1Char(':'));
        if (colon < 1 || getLenTrim(sort.mid(colon + 1)) < 1) {
            warnings->append(QStringLiteral("Sort \"%1\" ignored: write it as Name:FIELD, FIELD")
                                 .arg(sort.trimmed()));
            continue;
        }
        sorts.append({ sort.left(colon).trimmed(), sort.mid(colon + 1).trimmed() });
    }
    return sorts;
}

QString sortsText(const QList<QPair<QString, QString>> &sorts)
{
    QStringList out;
    for (const auto &[name, fields] : sorts)
        out << name + QLatin1Char(':') + fields;
    return out.join(QLatin1Char('|'));
}

} // namespace plx::form
