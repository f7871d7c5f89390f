// tests/support/testfiles.h: the bytes of real files, for tests that check what was written
// byte for byte or hand a program a file as another program left it.
#pragma once

#include <QByteArray>
#include <QString>

namespace plx::test {

// The whole file; empty when it cannot be read.
QByteArray readBytes(const QString &path);
// Replaces the file's content with `bytes`; a test failure when that cannot be done.
void writeBytes(const QString &path, const QByteArray &bytes);

} // namespace plx::test
