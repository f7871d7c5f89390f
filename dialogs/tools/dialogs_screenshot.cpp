// dialogs/tools/dialogs_screenshot.cpp: draws the dialogs a host opens from its fields (the
// value-list editor) as they look in use, and saves each as a PNG (the pictures in
// docs/images).
//
//     xvfb-run -s "-screen 0 1280x1024x24 -dpi 96" build/dialogs/dialogs_screenshot docs/images
#include "dialogs/frmvivalues.h"
#include "dialogs/listselect.h"
#include "dialogs/texteditor.h"

#include "services/ini.h"

#include <QApplication>
#include <QListWidget>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

namespace {

bool save(QWidget &window, const QString &file)
{
    window.show();
    (void)QTest::qWaitForWindowExposed(&window);
    QTest::qWait(50);
    const bool ok = window.grab().save(file);
    std::fprintf(ok ? stdout : stderr, "%s %s\n", ok ? "wrote" : "could not write",
                 qPrintable(file));
    return ok;
}

bool valueListEditor(const QString &dir, const QString &out)
{
    const QString listFile = dir + QStringLiteral("/lists.ini");
    (void)plx::writeINI(QStringLiteral("ValueItems"), QStringLiteral("Programs"), listFile,
                        QStringLiteral("PT {Physical therapy}|OT {Occupational therapy}|"
                                       "SP {Speech}|RT {Respiratory therapy}|DAY {Day program}|"
                                       "RES {Residential}|CM {Case management}"));
    plx::frmVIValues editor;
    editor.setSVINIFile(listFile);
    editor.setSVINISec(QStringLiteral("ValueItems"));
    editor.setSVINIVar(QStringLiteral("Programs"));
    editor.setSValue(QStringLiteral("PT,SP"));
    editor.setMaxLen(20);
    editor.InitForm();
    editor.setWindowTitle(QStringLiteral("Value Item List: Programs"));
    editor.findChild<QListWidget *>(QStringLiteral("List1"))->setCurrentRow(3);
    return save(editor, out + QStringLiteral("/value-list-editor.png"));
}

bool listSelect(const QString &out)
{
    plx::ListSelectDialog pick;
    pick.setWindowTitle(QStringLiteral("Columns of the Browse Grid"));
    pick.setItems({ QStringLiteral("ID"), QStringLiteral("NAME"), QStringLiteral("CITY"),
                    QStringLiteral("STATE"), QStringLiteral("ZIP"), QStringLiteral("PHONE"),
                    QStringLiteral("PROGRAMS"), QStringLiteral("BORN"), QStringLiteral("AMOUNT"),
                    QStringLiteral("NOTES") },
                  { QStringLiteral("NAME"), QStringLiteral("CITY"), QStringLiteral("PHONE") });
    pick.findChild<QListWidget *>(QStringLiteral("lstChosen"))->setCurrentRow(1);
    return save(pick, out + QStringLiteral("/list-select.png"));
}

bool textEditor(const QString &out)
{
    plx::TextEditorDialog editor;
    editor.setWindowTitle(QStringLiteral("Notes"));
    editor.setText(QStringLiteral(
        "Prefers calls after 4 pm; the office is closed on Fridays.\n\n"
        "Invoices by mail to the Düsseldorf address, never by e-mail. The client asked in "
        "March to have the therapy plan reviewed every quarter, and to be told a week ahead "
        "of any change of therapist.\n\nParking: the yard behind the building."));
    editor.setMaxLength(1000);
    return save(editor, out + QStringLiteral("/text-editor.png"));
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QString out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(".");
    QTemporaryDir dir;
    // The editor keeps its placement in the defaults file: one of its own, not the user's.
    qputenv("PLX_HARROWBY_DIR", dir.path().toLocal8Bit());
    bool ok = valueListEditor(dir.path(), out);
    ok = listSelect(out) && ok;
    ok = textEditor(out) && ok;
    return ok ? 0 : 1;
}
