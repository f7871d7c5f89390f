// apps/plxform/scriptrunner.cpp
#include "apps/plxform/scriptrunner.h"

#include "apps/plxform/hostform.h"
#include "services/texthelpers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QKeyEvent>

#include <cstdio>

namespace plx::form {

MsgAnswer ScriptPrompter::msgBox(const QString &prompt, int style, const QString &title)
{
    std::fprintf(stderr, "box: %s: %s\n", qPrintable(title),
                 qPrintable(QString(prompt).replace(QLatin1String("\r\n"), QLatin1String(" | "))));
    std::fflush(stderr);
    // Yes/No and Yes/No/Cancel (3) are answered Yes, OK and OK/Cancel OK.
    const int buttons = style & 7;
    return buttons == MsgStyle::YesNo || buttons == 3 ? MsgAnswer::Yes : MsgAnswer::OK;
}

std::optional<QString> ScriptPrompter::inputBox(const QString &prompt, const QString &title,
                                                const QString &defaultText)
{
    std::fprintf(stderr, "input: %s: %s\n", qPrintable(title), qPrintable(prompt));
    return defaultText;
}

namespace {

// Puts `value` into every text or value-item row that shows `field`, as typed; false when
// no row shows it.
bool setShownValue(HostForm &form, const QString &field, const QString &value)
{
    bool found = false;
    for (qint16 n = 0; n <= form.textRows()->nUbound(); ++n) {
        if (form.textRows()->sFieldName(n).compare(field, Qt::CaseInsensitive) == 0) {
            form.textRows()->setSValue(n, value);
            found = true;
        }
    }
    for (const QPointer<mvVIText> &valueRow : form.valueRows()) {
        if (valueRow && valueRow->sFieldName(0).compare(field, Qt::CaseInsensitive) == 0) {
            valueRow->setSValue(0, value);
            found = true;
        }
    }
    return found;
}

bool runLines(HostForm &form, const QStringList &lines, qsizetype from, qsizetype to,
              QString *error)
{
    mvPLXRecs *nav = form.navigator();
    for (qsizetype i = from; i < to; ++i) {
        const QString line = lines[i].trimmed();
        const QString verb = line.section(QLatin1Char(' '), 0, 0).toLower();
        const QString rest = line.section(QLatin1Char(' '), 1);
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (verb == QLatin1String("repeat")) {
            // The matching "end", counting nested repeats.
            qsizetype end = i + 1;
            for (int depth = 1; end < to; ++end) {
                const QString word = lines[end].trimmed().section(QLatin1Char(' '), 0, 0).toLower();
                depth += word == QLatin1String("repeat") ? 1
                    : word == QLatin1String("end")       ? -1
                                                         : 0;
                if (depth == 0)
                    break;
            }
            if (end >= to) {
                *error = QStringLiteral("line %1: repeat without end").arg(i + 1);
                return false;
            }
            for (int n = rest.toInt(); n > 0; --n)
                if (!runLines(form, lines, i + 1, end, error))
                    return false;
            i = end;
        } else if (verb == QLatin1String("find")) {
            auto *box = nav->findChild<QComboBox *>(QStringLiteral("cboFind"));
            box->setEditText(rest);
            QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
            QCoreApplication::sendEvent(box, &enter);
        } else if (verb == QLatin1String("click")) {
            nav->ClickButton(rest);
            form.refreshStatus();
        } else if (verb == QLatin1String("set")) {
            const QString field = rest.section(QLatin1Char(' '), 0, 0);
            const QString value = rest.section(QLatin1Char(' '), 1);
            if (!setShownValue(form, field, value)) {
                *error = QStringLiteral("line %1: no row shows the field %2").arg(i + 1).arg(field);
                return false;
            }
        } else if (verb == QLatin1String("next") || verb == QLatin1String("back")) {
            nav->findChild<QAbstractButton *>(verb == QLatin1String("next")
                                                  ? QStringLiteral("cmdRecNext")
                                                  : QStringLiteral("cmdRecBack"))
                ->click();
        } else if (verb == QLatin1String("print")) {
            std::printf("%s\n",
                        rest == QLatin1String("id") ? qPrintable(keyToASC(nav->sCurrentID()))
                                                    : qPrintable(rest));
            std::fflush(stdout);
        } else if (verb == QLatin1String("wait")) {
            QElapsedTimer waited;
            waited.start();
            while (waited.elapsed() < qint64(rest.toDouble() * 1000))
                QApplication::processEvents(QEventLoop::AllEvents, 50);
        } else {
            *error = QStringLiteral("line %1: unknown command \"%2\"").arg(i + 1).arg(verb);
            return false;
        }
        QApplication::processEvents();
    }
    return true;
}

} // namespace

bool runScript(HostForm &form, const QStringList &lines, QString *error)
{
    if (!form.navigator()) {
        *error = QStringLiteral("no form is open");
        return false;
    }
    return runLines(form, lines, 0, lines.size(), error);
}

} // namespace plx::form
