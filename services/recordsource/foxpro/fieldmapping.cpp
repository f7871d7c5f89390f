// services/recordsource/foxpro/fieldmapping.cpp: record-source field types as FoxPro fields.
#include "services/recordsource/foxpro/internal/fieldmapping.h"

namespace plx::foxpro {

DbfField dbfFieldFor(const FieldInfo &field)
{
    DbfField d;
    d.name = field.name;
    switch (field.type) {
    case FieldType::Text:
        d.type = 'C';
        d.length = field.size > 0 ? std::min(field.size, 254) : 254;
        break;
    case FieldType::Memo:
    case FieldType::Binary:
        d.type = 'M';
        d.length = 10;
        break;
    case FieldType::Integer:
        d.type = 'N';
        d.length = 11;
        break;
    case FieldType::Numeric:
        d.type = 'N';
        d.length = field.size > 0 ? field.size : 12;
        d.decimals = field.decimals;
        break;
    case FieldType::Double:
        d.type = 'F';
        d.length = 20;
        d.decimals = 6;
        break;
    case FieldType::Boolean:
        d.type = 'L';
        d.length = 1;
        break;
    case FieldType::Date:
    case FieldType::DateTime:
        d.type = 'D';
        d.length = 8;
        break;
    }
    return d;
}

} // namespace plx::foxpro
