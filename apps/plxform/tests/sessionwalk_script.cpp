// apps/plxform/tests/sessionwalk_script.cpp
#include "apps/plxform/tests/sessionwalk_script.h"

namespace plx::walk {

namespace {

const QStringList kVerbs = {
    QStringLiteral("NEW"),    QStringLiteral("COPY"),   QStringLiteral("EDIT"),
    QStringLiteral("SAVE"),   QStringLiteral("CANCEL"), QStringLiteral("DELETE"),
    QStringLiteral("TYPE"),   QStringLiteral("BACK"),   QStringLiteral("NEXT"),
    QStringLiteral("SCROLL"), QStringLiteral("SORT"),   QStringLiteral("FIND"),
    QStringLiteral("FILTER"), QStringLiteral("REOPEN"), QStringLiteral("FULLSAVE")
};

QString escaped(const QString &text)
{
    QString out;
    for (const QChar c : text) {
        if (c == QLatin1Char('\\'))
            out += QStringLiteral("\\\\");
        else if (c == QLatin1Char('\n'))
            out += QStringLiteral("\\n");
        else if (c == QLatin1Char('\r'))
            out += QStringLiteral("\\r");
        else if (c == QLatin1Char('\t'))
            out += QStringLiteral("\\t");
        else
            out += c;
    }
    return out;
}

QString unescaped(const QString &text)
{
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != QLatin1Char('\\') || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const QChar e = text[++i];
        out += e == QLatin1Char('n') ? QChar(QLatin1Char('\n'))
            : e == QLatin1Char('r')  ? QChar(QLatin1Char('\r'))
            : e == QLatin1Char('t')  ? QChar(QLatin1Char('\t'))
                                     : e;
    }
    return out;
}

} // namespace

QString formatScript(const QList<Step> &steps, const QStringList &comments)
{
    QStringList lines;
    for (const QString &c : comments)
        lines << QStringLiteral("# ") + c;
    for (const Step &s : steps) {
        QString line = s.verb;
        if (s.verb == QLatin1String("TYPE"))
            line += QLatin1Char(' ') + s.field + QLatin1Char(' ') + escaped(s.text);
        else if (!s.text.isEmpty())
            line += QLatin1Char(' ') + escaped(s.text);
        lines << line;
        for (MsgAnswer a : s.answers)
            lines << (a == MsgAnswer::Yes      ? QStringLiteral("ANSWER Yes")
                          : a == MsgAnswer::No ? QStringLiteral("ANSWER No")
                                               : QStringLiteral("ANSWER Cancel"));
    }
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

bool parseScript(const QString &script, QList<Step> *steps, QString *error)
{
    steps->clear();
    const QStringList lines = script.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.trimmed().isEmpty() || line.trimmed().startsWith(QLatin1Char('#')))
            continue;
        const QString verb = line.section(QLatin1Char(' '), 0, 0).toUpper();
        const QString rest = line.section(QLatin1Char(' '), 1);
        if (verb == QLatin1String("ANSWER")) {
            const QString answer = rest.trimmed().toLower();
            const bool known = answer == QLatin1String("yes") || answer == QLatin1String("no")
                || answer == QLatin1String("cancel");
            if (steps->isEmpty() || !known) {
                *error = QStringLiteral("line %1: an ANSWER needs a step before it and Yes, No "
                                        "or Cancel")
                             .arg(i + 1);
                return false;
            }
            steps->last().answers << (answer == QLatin1String("yes")      ? MsgAnswer::Yes
                                          : answer == QLatin1String("no") ? MsgAnswer::No
                                                                          : MsgAnswer::Cancel);
            continue;
        }
        if (!kVerbs.contains(verb)) {
            *error = QStringLiteral("line %1: unknown step \"%2\"").arg(i + 1).arg(verb);
            return false;
        }
        Step step{ verb, {}, {}, {} };
        if (verb == QLatin1String("TYPE")) {
            step.field = rest.section(QLatin1Char(' '), 0, 0).toUpper();
            step.text = unescaped(rest.section(QLatin1Char(' '), 1));
        } else {
            step.text = unescaped(rest);
        }
        steps->append(step);
    }
    return true;
}

} // namespace plx::walk
