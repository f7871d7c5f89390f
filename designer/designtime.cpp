// designer/designtime.cpp
#include "designer/designtime.h"

#include "services/env.h"
#include "services/prompter.h"

#include <QtDebug>

namespace plx::designer {

namespace {

class DesignTimePrompter : public Prompter
{
public:
    MsgAnswer msgBox(const QString &prompt, int style, const QString &title) override
    {
        qInfo().noquote() << "PLX Controls (not shown while designing):" << title << "-" << prompt;
        switch (style & 0x7) {
        case MsgStyle::YesNo: return MsgAnswer::No;
        case MsgStyle::OKCancel: return MsgAnswer::Cancel;
        default: return MsgAnswer::OK;
        }
    }

    std::optional<QString> inputBox(const QString &prompt, const QString &title,
                                    const QString &defaultText) override
    {
        Q_UNUSED(defaultText);
        qInfo().noquote() << "PLX Controls (not asked while designing):" << title << "-" << prompt;
        return std::nullopt;
    }
};

} // namespace

void useDesignTimeServices()
{
    static DesignTimePrompter prompter;
    static Services services{ &prompter, nullptr, nullptr };
    Services::setDefaults(&services);
}

} // namespace plx::designer
