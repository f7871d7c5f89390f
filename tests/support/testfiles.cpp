// tests/support/testfiles.cpp
#include "tests/support/testfiles.h"

#include <QFile>

#include <gtest/gtest.h>

namespace plx::test {

QByteArray readBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(f.write(bytes), bytes.size()) << path.toStdString();
}

} // namespace plx::test
