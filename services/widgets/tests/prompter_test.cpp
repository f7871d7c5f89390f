// The production prompter on the offscreen platform: the numeric style flags must become
// the right buttons, icon and default button, and the clicked button the right answer.
#include "services/widgets/qtprompter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

using namespace plx;

namespace {

struct SeenBox
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

// Shows a box with `style`, records what it looked like, and clicks `click`.
MsgAnswer showAndClick(int style, QMessageBox::StandardButton click, SeenBox *seen)
{
    QTimer::singleShot(0, [=]() {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        seen->title = box->windowTitle();
        seen->text = box->text();
        seen->icon = box->icon();
        seen->buttons = box->standardButtons();
        seen->defaultButton = box->standardButton(box->defaultButton());
        box->button(click)->click();
    });
    QtPrompter prompter;
    return prompter.msgBox(QStringLiteral("The text"), style, QStringLiteral("The title"));
}

} // namespace

TEST(QtPrompterTest, StyleFlagsPickButtonsIconAndDefault)
{
    SeenBox seen;
    EXPECT_EQ(showAndClick(321, QMessageBox::Cancel, &seen), MsgAnswer::Cancel);
    EXPECT_EQ(seen.title, QStringLiteral("The title"));
    EXPECT_EQ(seen.text, QStringLiteral("The text"));
    EXPECT_EQ(seen.icon, QMessageBox::Information);
    EXPECT_EQ(seen.buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(seen.defaultButton, QMessageBox::Cancel);

    EXPECT_EQ(showAndClick(4 + 48 + 256, QMessageBox::Yes, &seen), MsgAnswer::Yes);
    EXPECT_EQ(seen.icon, QMessageBox::Warning);
    EXPECT_EQ(seen.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(seen.defaultButton, QMessageBox::No);

    EXPECT_EQ(showAndClick(16, QMessageBox::Ok, &seen), MsgAnswer::OK);
    EXPECT_EQ(seen.icon, QMessageBox::Critical);
    EXPECT_EQ(seen.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
}
