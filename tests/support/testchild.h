// tests/support/testchild.h: plx_testchild, the second process of the cross-process tests,
// started in one of its roles (tests/support/child/roles.h lists them).
//
// A test target that starts it calls plx_test_starts_child(<target>) in CMake, so that the
// program is built first.
#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace plx::test {

// The path of plx_testchild.
QString testChildProgram();

// One run of plx_testchild with `arguments` (the role first); a child still running when
// this goes away is killed.
class TestChild
{
public:
    explicit TestChild(
        const QStringList &arguments,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~TestChild();
    TestChild(const TestChild &) = delete;
    TestChild &operator=(const TestChild &) = delete;

    // The next line the child prints, trimmed; "<no answer: ...>" with what it said on
    // stderr when none comes within `timeoutMs`.
    QString readLine(int timeoutMs = 20000);
    // Writes `line` and a line break to the child's standard input.
    void send(const QString &line);
    // Closes the child's standard input (a child that waits for its end then finishes).
    void closeInput();
    // SIGKILL, or TerminateProcess: the child gets no chance to release anything.
    void kill();
    // The child's exit code once it has finished; -1 when it did not start, does not finish
    // in `timeoutMs`, or crashes.
    int exitCode(int timeoutMs = 60000);
    // Everything the child has written to stderr and nobody has read yet.
    QString errors();

private:
    QProcess m_process;
    bool m_started = false;
};

} // namespace plx::test
