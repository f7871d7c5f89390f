// tests/support/testchild.cpp
#include "tests/support/testchild.h"

namespace plx::test {

namespace {

constexpr int StopTimeoutMs = 10000;

} // namespace

QString testChildProgram()
{
    return QStringLiteral(PLX_TEST_CHILD);
}

TestChild::TestChild(const QStringList &arguments, const QProcessEnvironment &environment)
{
    m_process.setProcessEnvironment(environment);
    m_process.start(testChildProgram(), arguments);
    m_started = m_process.waitForStarted(StopTimeoutMs);
}

TestChild::~TestChild()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

QString TestChild::readLine(int timeoutMs)
{
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(timeoutMs))
            return QStringLiteral("<no answer: %1>").arg(errors());
    }
    return QString::fromUtf8(m_process.readLine()).trimmed();
}

void TestChild::send(const QString &line)
{
    m_process.write((line + QLatin1Char('\n')).toUtf8());
}

void TestChild::closeInput()
{
    m_process.closeWriteChannel();
}

void TestChild::kill()
{
    m_process.kill();
    m_process.waitForFinished(StopTimeoutMs);
}

int TestChild::exitCode(int timeoutMs)
{
    if (!m_started
        || (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(timeoutMs)))
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QString TestChild::errors()
{
    return QString::fromLocal8Bit(m_process.readAllStandardError());
}

} // namespace plx::test
