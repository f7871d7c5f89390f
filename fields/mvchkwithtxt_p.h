// fields/mvchkwithtxt_p.h: the two parts of a check-with-text unit.
#pragma once

#include "fields/fieldcontrol_p.h"
#include "fields/mvchkwithtxt.h"

namespace plx {

class mvChkWithTxtPrivate : public FieldControlPrivate
{
    Q_DECLARE_PUBLIC(mvChkWithTxt)

public:
    // Makes the check box at the top left and the text stack right below it.
    void init();
    // Makes the unit as high as both parts, in and out of layouts.
    void fitHeight();

    mvChkWithTxt *q_ptr = nullptr;
    mvCheck *chk = nullptr;
    mvName *txt = nullptr;

protected:
    void setPartsEnabled(bool enabled) override;
};

} // namespace plx
