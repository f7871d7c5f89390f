// fields/tools/fields_screenshot.cpp: draws a client form of text rows and check boxes
// bound to a FoxPro table, in a light and a dark palette and locked for browsing, and
// saves each as a PNG (the pictures in docs/images).
//
//     xvfb-run -s "-screen 0 1280x1024x24 -dpi 96" build/fields/fields_screenshot docs/images
#include "fields/mvchecks.h"
#include "fields/mvchkwithtxt.h"
#include "fields/mvname.h"
#include "mervane/rowpalette.h"
#include "mervane/twips.h"

#include "services/recordsource/database.h"
#include "services/recordsource/dbf/internal/dbftable.h"

#include <QApplication>
#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

#include <cstdio>

namespace {

using plx::BoundControl;
using plx::DbfField;
using plx::DbfTable;
using plx::twipsToPixelsX;
using plx::twipsToPixelsY;

QString makeTable(const QString &dir)
{
    QString path = dir + QStringLiteral("/CLIENT.DBF");
    auto field = [](const char *name, char type, int length, int decimals = 0) {
        DbfField f;
        f.name = QString::fromLatin1(name);
        f.type = type;
        f.length = length;
        f.decimals = decimals;
        return f;
    };
    auto table = DbfTable::create(
        path,
        { field("ID", 'C', 20), field("NAME", 'C', 40), field("CITY", 'C', 30),
          field("AMOUNT", 'N', 12, 2), field("BORN", 'D', 8), field("NOTES", 'M', 10),
          field("ACTIVE", 'L', 1), field("TAXFREE", 'L', 1), field("MAILING", 'C', 1),
          field("VIP", 'N', 2), field("DELIVER", 'L', 1), field("DADDR", 'C', 40),
          field("DCITY", 'C', 30) },
        0, 1252);
    if (!table.isOk())
        return {};
    (void)table.value()->appendRecord(
        { QStringLiteral("PLE00A1B2C"), QStringLiteral("Müller, Zoë"), QStringLiteral("Düsseldorf"),
          12345.5, QDate(1984, 7, 21),
          QStringLiteral("Prefers calls after 4 pm.\r\nInvoice by mail."), true, false,
          QStringLiteral("Y"), 1, true, QStringLiteral("12 Königsallee"),
          QStringLiteral("Düsseldorf") });
    return path;
}

// The host form: a text stack, a check-box stack and a check box with its text rows.
struct ClientForm
{
    QWidget window;
    plx::mvName *names = new plx::mvName(&window);
    plx::mvChecks *checks = new plx::mvChecks(&window);
    plx::mvChkWithTxt *delivery = new plx::mvChkWithTxt(&window);

    explicit ClientForm(const QString &table)
    {
        window.setWindowTitle(QStringLiteral("Client"));
        names->setObjectName(QStringLiteral("mvNameClient"));
        checks->setObjectName(QStringLiteral("mvChecksClient"));
        delivery->setObjectName(QStringLiteral("mvChkWithTxtDelivery"));
        const int width = twipsToPixelsX(&window, 6600);

        names->setIVspacing(60);
        names->setNUbound(5);
        const char *captions[] = { "Client ID", "Name", "City", "Amount", "Born", "Notes" };
        const char *fields[] = { "ID", "NAME", "CITY", "AMOUNT", "BORN", "NOTES" };
        for (qint16 i = 0; i <= 5; ++i) {
            names->setSCaption(i, QString::fromLatin1(captions[i]));
            names->setSFieldName(i, QString::fromLatin1(fields[i]));
        }
        names->setIHeight(5, 900);
        names->setNUbound(5); // re-fit the height to the taller memo row
        names->setDescWidthAll(1300);
        names->setSMode(0, QStringLiteral("Upper"));
        names->setSFormat(3, QStringLiteral("#,##0.00"));
        names->setSFormat(4, QStringLiteral("mm/dd/yyyy"));
        names->setBackLtGray(0, true);
        names->setBackRed(3, true);
        names->setToolTip(3, QStringLiteral("Outstanding amount"));
        names->resize(width, names->height());
        names->setSDBFPathFileName(table);

        checks->setNUbound(3);
        const char *boxes[] = { "Active", "Tax free", "Mailing list", "VIP" };
        const char *flags[] = { "ACTIVE", "TAXFREE", "MAILING", "VIP" };
        for (qint16 i = 0; i <= 3; ++i) {
            checks->setSCaption(i, QString::fromLatin1(boxes[i]));
            checks->setSFieldName(i, QString::fromLatin1(flags[i]));
        }
        checks->setBBoldOnChk(true);
        checks->resize(width, checks->height());
        checks->setSDBFPathFileName(table);

        delivery->setSCaptionChk(QStringLiteral("Separate delivery address"));
        delivery->setNUbound(1);
        delivery->setSCaptionTxt(0, QStringLiteral("Street"));
        delivery->setSCaptionTxt(1, QStringLiteral("City"));
        delivery->setDescWidthAll(1300);
        delivery->setSFieldNameChk(QStringLiteral("DELIVER"));
        delivery->setSFieldNameTxt(0, QStringLiteral("DADDR"));
        delivery->setSFieldNameTxt(1, QStringLiteral("DCITY"));
        delivery->setLAltGrayColor(1);
        delivery->resize(width, delivery->height());
        delivery->setSDBFPathFileName(table);

        auto *layout = new QVBoxLayout(&window);
        layout->setSpacing(twipsToPixelsY(&window, 120));
        for (QWidget *w : { static_cast<QWidget *>(names), static_cast<QWidget *>(checks),
                            static_cast<QWidget *>(delivery) }) {
            w->setFixedSize(width, w->height());
            layout->addWidget(w);
        }
        layout->addStretch();
        for (BoundControl *c :
             { static_cast<BoundControl *>(names), static_cast<BoundControl *>(checks),
               static_cast<BoundControl *>(delivery) })
            c->UpdateDBF();
    }

    void setLocked(bool locked) const
    {
        names->setLocked(locked);
        checks->setLocked(locked);
        delivery->setLocked(locked);
    }
};

bool shoot(ClientForm &form, const QString &file)
{
    form.window.show();
    form.window.activateWindow();
    (void)QTest::qWaitForWindowExposed(&form.window);
    (void)QTest::qWaitForWindowActive(&form.window, 2000);
    form.names->textRow(2)->setFocus();
    QTest::qWait(200);
    const bool ok = form.window.grab().save(file);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(file));
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QString out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral(".");
    QTemporaryDir dir;
    const QString table = makeTable(dir.path());
    if (table.isEmpty())
        return 1;
    bool ok = true;
    {
        ClientForm form(table);
        form.setLocked(false);
        ok &= shoot(form, out + QStringLiteral("/fields-light.png"));
        form.setLocked(true);
        ok &= shoot(form, out + QStringLiteral("/fields-locked.png"));
    }
    {
        QApplication::setPalette(plx::darkPalette());
        ClientForm form(table);
        form.setLocked(false);
        ok &= shoot(form, out + QStringLiteral("/fields-dark.png"));
    }
    return ok ? 0 : 1;
}
