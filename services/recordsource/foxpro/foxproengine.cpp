// services/recordsource/foxpro/foxproengine.cpp: registers the "FoxPro 2.6" engine when
// this library is linked in.
//
// The symbol below is what the plx::foxpro target asks the linker to keep (see its
// CMakeLists.txt): nothing else refers to this file, and a linker only takes from a static
// library the objects something refers to.
#include "services/recordsource/database.h"
#include "services/recordsource/foxpro/foxprodatabase_p.h"

namespace {

// "FoxPro 2.6;CodePage=850": the code page for tables whose header has no code-page mark.
int codePageOption(const QString &connect)
{
    const QStringList parts = connect.split(QLatin1Char(';'));
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString key = parts.at(i).section(QLatin1Char('='), 0, 0).trimmed();
        if (key.compare(QLatin1String("CodePage"), Qt::CaseInsensitive) == 0)
            return parts.at(i).section(QLatin1Char('='), 1).trimmed().toInt();
    }
    return 0;
}

plx::Result<std::unique_ptr<plx::Database>> openFoxPro(const QString &name,
                                                       const plx::DatabaseOptions &options)
{
    return plx::foxpro::openDatabase(name, options.readOnly, codePageOption(options.connect));
}

} // namespace

extern "C" const bool plx_foxpro_engine =
    plx::registerDatabaseEngine(QStringLiteral("FoxPro 2.6"), &openFoxPro);
