// tests/support/envguard.h: restores environment variables and service settings that a
// test changes, so tests stay independent of each other and of the machine.
#pragma once

#include "services/ini.h"
#include "services/installdir.h"

#include <QByteArray>
#include <QList>
#include <QPair>

namespace plx::test {

class EnvGuard
{
public:
    EnvGuard()
    {
        for (const char *name :
             { "PLX_HARROWBY_DIR", "PLX_COMPONENT_DIR", "PATH", "PLX_FAMILY_EXECUTABLES" })
            m_saved.append({ name, qgetenv(name) });
    }
    ~EnvGuard()
    {
        for (const auto &[name, value] : m_saved) {
            if (value.isNull())
                qunsetenv(name);
            else
                qputenv(name, value);
        }
        setFamilyExecutables({});
        setComponentDir(QString());
        resetDefaultsINI();
    }
    EnvGuard(const EnvGuard &) = delete;
    EnvGuard &operator=(const EnvGuard &) = delete;

    // Points the installation directory at `dir` and forgets the held defaults file.
    void installAt(const QString &dir)
    {
        qputenv("PLX_HARROWBY_DIR", dir.toLocal8Bit());
        resetDefaultsINI();
    }

private:
    QList<QPair<const char *, QByteArray>> m_saved;
};

} // namespace plx::test
