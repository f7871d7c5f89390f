// A designed form compiled by uic, as a host's build compiles it: the generated setupUi makes
// the library's own controls and sets every property of the form through their setters, so
// the form needs no code of its own.
#include "ui_allcontrols.h"

#include <gtest/gtest.h>

namespace {

TEST(CompiledForm, SetupUiSetsEveryDesignedProperty)
{
    Ui::FacilityForm ui;
    QWidget form;
    ui.setupUi(&form);

    EXPECT_EQ(ui.navigator->sIDfield().toStdString(), "ID");
    EXPECT_EQ(ui.navigator->sDesc().toStdString(), "Facilities");
    EXPECT_EQ(ui.navigator->MyLevel(), 2);
    EXPECT_FALSE(ui.navigator->EnableBrowse());

    EXPECT_EQ(ui.names->nUbound(), 3);
    EXPECT_EQ(ui.names->sCaption(2).toStdString(), "City");
    EXPECT_EQ(ui.names->sFieldName(0).toStdString(), "ID");
    EXPECT_EQ(ui.valueItems->sVINIVar().toStdString(), "STATE");
    EXPECT_EQ(ui.checks->sFieldName(1).toStdString(), "AUDITED");
    EXPECT_TRUE(ui.checks->bBoldOnChk());
    EXPECT_EQ(ui.checkWithText->sFieldNameChk().toStdString(), "CLOSED");
    EXPECT_EQ(ui.checkWithText->sCaptionTxt(1).toStdString(), "Reason");
    EXPECT_EQ(ui.checkWithText->sFieldNameTxt(0).toStdString(), "CLOSEDON");
}

} // namespace
