// services/recordsource/foxpro/foxproengine.cpp: registers the "FoxPro 2.6" engine when
// this library is linked in, and reads the options of its connect string:
//   CodePage=850       the code page of tables whose header has no code-page mark
//   Collate=Machine    text compares in the code page's byte order (the default)
//   Collate=General    text compares case-insensitively, accented letters beside their base
//                      letters
// Option names and values are read without regard to case.
//
// The symbol below is what the plx::foxpro target asks the linker to keep (see its
// CMakeLists.txt): nothing else refers to this file, and a linker only takes from a static
// library the objects something refers to.
#include "services/recordsource/database.h"
#include "services/recordsource/foxpro/foxprodatabase_p.h"

#include <optional>

namespace {

// The value of option `key` in a connect string ("FoxPro 2.6;Key=value;..."), trimmed;
// nothing when the option is absent.
std::optional<QString> connectOption(const QString &connect, QLatin1StringView key)
{
    const QStringList parts = connect.split(QLatin1Char(';'));
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString name = parts.at(i).section(QLatin1Char('='), 0, 0).trimmed();
        if (name.compare(key, Qt::CaseInsensitive) == 0)
            return parts.at(i).section(QLatin1Char('='), 1).trimmed();
    }
    return std::nullopt;
}

// FoxPro's names for its collating sequences: MACHINE (byte order) and GENERAL.
plx::Result<plx::TextCompare> collateOption(const QString &connect)
{
    const std::optional<QString> value = connectOption(connect, QLatin1StringView("Collate"));
    if (!value || value->compare(QLatin1String("Machine"), Qt::CaseInsensitive) == 0)
        return plx::TextCompare::Binary;
    if (value->compare(QLatin1String("General"), Qt::CaseInsensitive) == 0)
        return plx::TextCompare::NoCase;
    return plx::Status(plx::Status::Code::InvalidArgument,
                       QStringLiteral("unknown collating sequence \"%1\" in the connect string "
                                      "\"%2\": Collate is Machine or General")
                           .arg(*value, connect));
}

plx::Result<std::unique_ptr<plx::Database>> openFoxPro(const QString &name,
                                                       const plx::DatabaseOptions &options)
{
    const plx::Result<plx::TextCompare> collate = collateOption(options.connect);
    if (!collate.isOk())
        return collate.status();
    const int codePage =
        connectOption(options.connect, QLatin1StringView("CodePage")).value_or(QString()).toInt();
    return plx::foxpro::openDatabase(name, options.readOnly, codePage, collate.value());
}

} // namespace

extern "C" const bool plx_foxpro_engine =
    plx::registerDatabaseEngine(QStringLiteral("FoxPro 2.6"), &openFoxPro);
