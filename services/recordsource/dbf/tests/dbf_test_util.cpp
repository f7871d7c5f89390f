// services/recordsource/dbf/tests/dbf_test_util.cpp: sample paths, the python bridge and
// the canonical value text shared with dbf_interop.py.
#include "dbf_test_util.h"

#include <QDate>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <cmath>

namespace plx::dbftestutil {

QString sampleDir()
{
    QString root = qEnvironmentVariable("PLX_SOURCE_DIR");
    if (root.isEmpty())
        root = QStringLiteral(PLX_DBF_PROJECT_DIR);
    return QDir::cleanPath(root + QStringLiteral("/../shared/testdata/dbf"));
}

bool samplesPresent()
{
    return QFileInfo::exists(sampleDir() + QStringLiteral("/PROVENANCE.md"));
}

QString samplePath(const QString &name)
{
    return sampleDir() + QLatin1Char('/') + name;
}

bool pythonReady()
{
    static const bool ready = [] {
        QProcess p;
        p.start(QStringLiteral("/usr/bin/python3"),
                { QStringLiteral("-c"), QStringLiteral("import dbf, dbfread") });
        return p.waitForFinished(20000) && p.exitStatus() == QProcess::NormalExit
            && p.exitCode() == 0;
    }();
    return ready;
}

QStringList runInterop(const QStringList &args, bool *ok)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            QStringList{ QStringLiteral(PLX_DBF_TEST_DIR "/dbf_interop.py") } + args);
    const bool finished = p.waitForFinished(30000);
    *ok = finished && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (!*ok)
        ADD_FAILURE() << "dbf_interop.py " << args.join(QLatin1Char(' ')).toStdString()
                      << " failed: " << p.readAllStandardError().toStdString();
    return QString::fromUtf8(p.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString canon(const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return QStringLiteral("null");
    switch (v.typeId()) {
    case QMetaType::Bool: return v.toBool() ? QStringLiteral("b:1") : QStringLiteral("b:0");
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Double: {
        const double d = v.toDouble();
        if (d == std::trunc(d) && std::fabs(d) < 1e15)
            return QStringLiteral("n:%1").arg(v.typeId() == QMetaType::Double ? qint64(d)
                                                                              : v.toLongLong());
        return QStringLiteral("n:") + QString::number(d, 'f', 4);
    }
    case QMetaType::QDate: return QStringLiteral("d:") + v.toDate().toString(Qt::ISODate);
    case QMetaType::QDateTime:
        return QStringLiteral("t:")
            + v.toDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    case QMetaType::QByteArray: {
        const QByteArray b = v.toByteArray();
        return b.isEmpty() ? QStringLiteral("null")
                           : QStringLiteral("x:") + QString::fromLatin1(b.toHex());
    }
    default: break;
    }
    QString text = v.toString();
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    if (text.isEmpty())
        return QStringLiteral("null");
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    text.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    text.replace(QLatin1Char('|'), QStringLiteral("\\p"));
    return QStringLiteral("s:") + text;
}

QStringList dumpTable(const DbfTable &table)
{
    QStringList live;
    QStringList deleted;
    for (quint32 r = 1; r <= table.recordCount(); ++r) {
        QStringList values;
        for (int f = 0; f < table.fields().size(); ++f) {
            auto v = table.value(r, f);
            values << (v.isOk() ? canon(*v) : QStringLiteral("error:") + v.status().message());
        }
        (table.isDeleted(r) ? deleted : live) << values.join(QLatin1Char('|'));
    }
    QStringList lines;
    for (const QString &l : live)
        lines << QStringLiteral("L|") + l;
    for (const QString &d : deleted)
        lines << QStringLiteral("D|") + d;
    return lines;
}

QString makeSmallTable(const QString &dir, int records)
{
    const QString path = dir + QStringLiteral("/SMALL.DBF");
    auto t = DbfTable::create(path,
                              { { QStringLiteral("NAME"), 'C', 10 },
                                { QStringLiteral("QTY"), 'N', 5 },
                                { QStringLiteral("PRICE"), 'N', 8, 2 },
                                { QStringLiteral("BORN"), 'D', 8 },
                                { QStringLiteral("OK"), 'L', 1 },
                                { QStringLiteral("NOTES"), 'M', 10 } });
    EXPECT_TRUE(t.isOk()) << t.status().toString().toStdString();
    if (!t.isOk())
        return path;
    (*t)->setDurable(false);
    for (int i = 1; i <= records; ++i) {
        auto r = (*t)->appendRecord({ QStringLiteral("NAME%1").arg(i), i, i * 1.5,
                                      QDate(2000, 1, i % 28 + 1), i % 2 == 0,
                                      QStringLiteral("memo of record %1").arg(i) });
        EXPECT_TRUE(r.isOk()) << r.status().toString().toStdString();
    }
    return path;
}

} // namespace plx::dbftestutil
