// services/iniprofile.cpp: parsing and editing a settings file the way the Windows profile
// functions do.
#include "services/iniprofile_p.h"

#include "services/cp1252.h"

namespace plx {

namespace {

const QByteArray bom("\xEF\xBB\xBF");

QStringView trimBlanks(QStringView s)
{
    qsizetype a = 0;
    qsizetype b = s.size();
    auto blank = [](QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); };
    while (a < b && blank(s.at(a)))
        ++a;
    while (b > a && blank(s.at(b - 1)))
        --b;
    return s.sliced(a, b - a);
}

bool sameName(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

bool IniProfile::isHeader(QStringView line, QStringView *name)
{
    const QStringView t = trimBlanks(line);
    if (!t.startsWith(QLatin1Char('[')))
        return false;
    const qsizetype close = t.indexOf(QLatin1Char(']'));
    *name = trimBlanks(close < 0 ? t.sliced(1) : t.sliced(1, close - 1));
    return true;
}

bool IniProfile::keyLine(QStringView line, QStringView *key, QStringView *value)
{
    const qsizetype eq = line.indexOf(QLatin1Char('='));
    if (eq < 0)
        return false;
    *key = trimBlanks(line.first(eq));
    *value = trimBlanks(line.sliced(eq + 1));
    return true;
}

QStringView IniProfile::unquoted(QStringView value)
{
    // One pair of matching quotes around the whole value is removed.
    if (value.size() >= 2 && value.front() == value.back()
        && (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\'')))
        return value.sliced(1, value.size() - 2);
    return value;
}

QString IniProfile::decode(const QByteArray &contents)
{
    if (contents.startsWith(bom))
        return QString::fromUtf8(contents.sliced(bom.size()));
    return cp1252::decode(contents);
}

IniProfile IniProfile::parse(const QByteArray &contents)
{
    IniProfile p;
    QByteArray body = contents;
    if (body.startsWith(bom)) {
        p.m_utf8Bom = true;
        body.remove(0, bom.size());
    }
    qsizetype start = 0;
    while (start < body.size()) {
        qsizetype nl = body.indexOf('\n', start);
        const qsizetype end = nl < 0 ? body.size() : nl + 1;
        const QByteArray raw = body.mid(start, end - start);
        QByteArray content = raw;
        while (content.endsWith('\n') || content.endsWith('\r'))
            content.chop(1);
        p.m_raw.append(raw);
        p.m_text.append(p.m_utf8Bom ? QString::fromUtf8(content) : cp1252::decode(content));
        start = end;
    }
    return p;
}

qsizetype IniProfile::findSection(const QString &section) const
{
    for (qsizetype i = 0; i < m_text.size(); ++i) {
        QStringView name;
        if (isHeader(m_text.at(i), &name) && sameName(name, section))
            return i;
    }
    return -1;
}

qsizetype IniProfile::sectionEnd(qsizetype header) const
{
    QStringView name;
    for (qsizetype i = header + 1; i < m_text.size(); ++i) {
        if (isHeader(m_text.at(i), &name))
            return i;
    }
    return m_text.size();
}

bool IniProfile::find(const QString &section, const QString &key, QString *value) const
{
    const qsizetype header = findSection(section);
    if (header < 0)
        return false;
    const qsizetype end = sectionEnd(header);
    for (qsizetype i = header + 1; i < end; ++i) {
        QStringView k, v;
        if (!keyLine(m_text.at(i), &k, &v) || !sameName(k, key))
            continue;
        *value = unquoted(v).toString();
        return true;
    }
    return false;
}

QByteArray IniProfile::encodeLine(const QString &text) const
{
    return (m_utf8Bom ? text.toUtf8() : cp1252::encode(text)) + QByteArray("\r\n");
}

void IniProfile::set(const QString &section, const QString &key, const QString &value)
{
    const QString line = key + QLatin1Char('=') + value;
    // A last line without a terminator must get one before anything follows it.
    auto terminateLast = [this]() {
        if (!m_raw.isEmpty() && !m_raw.back().endsWith('\n'))
            m_raw.back().append("\r\n");
    };
    const qsizetype header = findSection(section);
    if (header < 0) {
        terminateLast();
        const bool separate = !m_text.isEmpty() && !trimBlanks(m_text.back()).isEmpty();
        if (separate) {
            m_raw.append(QByteArray("\r\n"));
            m_text.append(QString());
        }
        m_raw.append(encodeLine(QLatin1Char('[') + section + QLatin1Char(']')));
        m_text.append(QLatin1Char('[') + section + QLatin1Char(']'));
        m_raw.append(encodeLine(line));
        m_text.append(line);
        return;
    }
    const qsizetype end = sectionEnd(header);
    qsizetype lastFilled = header;
    for (qsizetype i = header + 1; i < end; ++i) {
        QStringView k, v;
        if (keyLine(m_text.at(i), &k, &v) && sameName(k, key)) {
            // Keep the line's own terminator so the rest of the file is untouched.
            const QByteArray raw = m_raw.at(i);
            const QByteArray ending = raw.endsWith("\r\n") ? QByteArray("\r\n")
                : raw.endsWith('\n')                       ? QByteArray("\n")
                                                           : QByteArray("\r\n");
            m_raw[i] = encodeLine(line).chopped(2) + ending;
            m_text[i] = line;
            return;
        }
        if (!trimBlanks(m_text.at(i)).isEmpty())
            lastFilled = i;
    }
    // New keys go after the section's last non-blank line, before any blank separator.
    if (lastFilled == m_raw.size() - 1)
        terminateLast();
    m_raw.insert(lastFilled + 1, encodeLine(line));
    m_text.insert(lastFilled + 1, line);
}

bool IniProfile::removeSection(const QString &section)
{
    // Readers take the first match, so a second section of the name left behind would
    // bring the removed one back.
    bool removed = false;
    for (qsizetype header = findSection(section); header >= 0; header = findSection(section)) {
        const qsizetype end = sectionEnd(header);
        m_raw.remove(header, end - header);
        m_text.remove(header, end - header);
        removed = true;
    }
    return removed;
}

QByteArray IniProfile::serialize() const
{
    QByteArray out = m_utf8Bom ? bom : QByteArray();
    for (const QByteArray &raw : m_raw)
        out += raw;
    return out;
}

} // namespace plx
