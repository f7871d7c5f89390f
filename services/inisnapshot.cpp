// services/inisnapshot.cpp: parsing a settings file once into look-up tables.
#include "services/inisnapshot.h"

#include "services/iniprofile_p.h"
#include "services/texthelpers.h"

#include <QSet>

#include <utility>

namespace plx {

namespace {

char16_t asciiLower(char16_t u)
{
    return (u >= u'A' && u <= u'Z') ? char16_t(u + 32) : u;
}

// The same for names that compare equal without regard to case (QString::compare with
// Qt::CaseInsensitive, the profile reader's comparison): a hash of the case-folded name.
// Names are nearly always ASCII, whose folding is lower case, done here without a copy.
size_t caselessHash(const QString &name, size_t seed)
{
    auto hashOf = [seed](QStringView folded) {
        quint64 h = quint64(seed) ^ 0xcbf29ce484222325ULL;
        for (const QChar c : folded)
            h = (h ^ asciiLower(c.unicode())) * 0x100000001b3ULL;
        // The table takes its buckets from the low bits, which the loop mixes least.
        h ^= h >> 33;
        h *= 0xff51afd7ed558ccdULL;
        h ^= h >> 33;
        return size_t(h);
    };
    for (const QChar c : name)
        if (c.unicode() >= 0x80)
            return hashOf(name.toCaseFolded());
    return hashOf(name);
}

// QString::compare(x, y, Qt::CaseInsensitive) == 0, answered without case folding while
// the characters are ASCII; the table compares many unequal names of the same length.
bool caselessEqual(const QString &x, const QString &y)
{
    if (x.size() == y.size()) {
        qsizetype i = 0;
        for (; i < x.size(); ++i) {
            const char16_t a = x.at(i).unicode();
            const char16_t b = y.at(i).unicode();
            if (a >= 0x80 || b >= 0x80)
                break; // a non-ASCII character may fold to an ASCII one
            if (asciiLower(a) != asciiLower(b))
                return false;
        }
        if (i == x.size())
            return true;
    }
    return x.compare(y, Qt::CaseInsensitive) == 0;
}

// The lines of `text`, without their line ends (a CR LF, an LF, or several CRs before LF).
template<typename Each> void forEachLine(const QString &text, Each each)
{
    const QStringView all(text);
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype nl = all.indexOf(QLatin1Char('\n'), start);
        const qsizetype end = nl < 0 ? all.size() : nl;
        QStringView line = all.sliced(start, end - start);
        while (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        each(line);
        start = end + 1;
    }
}

} // namespace

IniSnapshot::Name::Name(QString sectionName, QString keyName)
    : section(std::move(sectionName)), key(std::move(keyName)),
      hash(caselessHash(key, caselessHash(section, 0)))
{
}

bool IniSnapshot::Name::operator==(const Name &other) const
{
    return hash == other.hash && caselessEqual(section, other.section)
        && caselessEqual(key, other.key);
}

IniSnapshot IniSnapshot::parse(const QByteArray &contents)
{
    IniSnapshot snapshot;
    QSet<Name> seenSections; // sections by name, key left empty
    // Keys of a repeated section are listed but never found, as readINI stops at the first.
    bool firstOfItsName = false;
    forEachLine(IniProfile::decode(contents), [&](QStringView line) {
        QStringView name, value;
        if (IniProfile::isHeader(line, &name)) {
            snapshot.m_sections.append({ name.toString(), {} });
            const qsizetype known = seenSections.size();
            seenSections.insert(Name{ snapshot.m_sections.last().name, QString() });
            firstOfItsName = seenSections.size() > known;
            return;
        }
        if (snapshot.m_sections.isEmpty())
            return; // lines before the first header belong to no section
        Section &section = snapshot.m_sections.last();
        const QStringView trimmed = line.trimmed();
        // Comments are no keys to list, but the profile reader finds ";key=" all the same.
        const bool comment = trimmed.startsWith(QLatin1Char(';'));
        if (!IniProfile::keyLine(line, &name, &value)) {
            if (!trimmed.isEmpty() && !comment)
                section.keys.append(trimmed.toString());
            return;
        }
        const QString key = name.toString();
        if (!comment)
            section.keys.append(key);
        if (!firstOfItsName)
            return;
        const qsizetype known = snapshot.m_values.size();
        QString &slot = snapshot.m_values[Name{ section.name, key }];
        if (snapshot.m_values.size() > known) // the first key of a name wins
            slot = IniProfile::unquoted(value).toString();
    });
    return snapshot;
}

std::optional<QString> IniSnapshot::find(const QString &section, const QString &key) const
{
    const auto it = m_values.constFind(Name{ trimSpaces(section), trimSpaces(key) });
    if (it == m_values.cend())
        return std::nullopt;
    return *it;
}

QString IniSnapshot::value(const QString &section, const QString &key, const QString &def) const
{
    return find(section, key).value_or(def);
}

} // namespace plx
