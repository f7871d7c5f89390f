// services/codepages.cpp: header marks and table-driven conversions.
#include "services/codepages.h"

#include "services/cp1252.h"
#include "services/codepages_p.h"

namespace plx::codepages {

namespace {

struct Page
{
    int codePage;
    const char16_t *upper; // nullptr for 1252, which the shared services table handles
};

const Page kPages[] = {
    { 437, detail::kCp437 },   { 737, detail::kCp737 },   { 850, detail::kCp850 },
    { 852, detail::kCp852 },   { 857, detail::kCp857 },   { 861, detail::kCp861 },
    { 865, detail::kCp865 },   { 866, detail::kCp866 },   { 874, detail::kCp874 },
    { 1250, detail::kCp1250 }, { 1251, detail::kCp1251 }, { 1252, nullptr },
    { 1253, detail::kCp1253 }, { 1254, detail::kCp1254 }, { 1255, detail::kCp1255 },
    { 1256, detail::kCp1256 }, { 1257, detail::kCp1257 },
};

const Page *findPage(int codePage)
{
    for (const Page &p : kPages) {
        if (p.codePage == codePage)
            return &p;
    }
    return nullptr;
}

struct Mark
{
    quint8 mark;
    int codePage;
};

// FoxPro's marks first: markForCodePage() returns the first entry of a code page.
const Mark kMarks[] = {
    { 0x01, 437 },
    { 0x02, 850 },
    { 0x03, 1252 },
    { 0x64, 852 },
    { 0x65, 866 },
    { 0x66, 865 },
    { 0x67, 861 },
    { 0x6A, 737 },
    { 0x6B, 857 },
    { 0x7C, 874 },
    { 0x7D, 1255 },
    { 0x7E, 1256 },
    { 0xC8, 1250 },
    { 0xC9, 1251 },
    { 0xCA, 1254 },
    { 0xCB, 1253 },
    { 0xCC, 1257 },
    // dBASE / Clipper language-driver IDs found in the same byte: read, never written.
    { 0x57, 1252 },
    { 0x58, 1252 },
    { 0x59, 1252 },
    { 0x1B, 437 },
    { 0x09, 437 },
    { 0x0B, 437 },
    { 0x0D, 437 },
    { 0x0F, 437 },
    { 0x11, 437 },
    { 0x15, 437 },
    { 0x18, 437 },
    { 0x19, 437 },
    { 0x0A, 850 },
    { 0x0E, 850 },
    { 0x10, 850 },
    { 0x12, 850 },
    { 0x14, 850 },
    { 0x16, 850 },
    { 0x1A, 850 },
    { 0x1D, 850 },
    { 0x25, 850 },
    { 0x37, 850 },
    { 0x26, 866 },
    { 0x1F, 852 },
    { 0x22, 852 },
    { 0x23, 852 },
    { 0x40, 852 },
    { 0x08, 865 },
    { 0x17, 865 },
    { 0x50, 874 },
};

// The code of a character in the page's upper half; -1 when it has none. A linear search
// keeps this free of shared mutable state; it only runs when writing non-ASCII text.
int upperCode(const Page &page, char16_t ch)
{
    for (int i = 0; i < 128; ++i) {
        if (page.upper[i] == ch)
            return 0x80 + i;
    }
    return -1;
}

} // namespace

int codePageForMark(quint8 mark)
{
    for (const Mark &m : kMarks) {
        if (m.mark == mark)
            return m.codePage;
    }
    return 0;
}

quint8 markForCodePage(int codePage)
{
    for (const Mark &m : kMarks) {
        if (m.codePage == codePage)
            return m.mark;
    }
    return 0;
}

bool isSupported(int codePage)
{
    return findPage(codePage) != nullptr;
}

QString decode(int codePage, QByteArrayView bytes)
{
    const Page *page = findPage(codePage);
    QString out(bytes.size(), Qt::Uninitialized);
    QChar *dst = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x80)
            dst[i] = QChar(char16_t(b));
        else if (page && page->upper)
            dst[i] = QChar(page->upper[b - 0x80]);
        else
            dst[i] = cp1252::toUnicode(b);
    }
    return out;
}

std::optional<QByteArray> encode(int codePage, const QString &text)
{
    const Page *page = findPage(codePage);
    if (!page)
        return std::nullopt;
    QByteArray out(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t ch = text.at(i).unicode();
        if (ch < 0x80) {
            out[i] = char(ch);
        } else if (!page->upper) {
            const int code = cp1252::fromUnicode(QChar(ch), -1);
            if (code < 0)
                return std::nullopt;
            out[i] = char(code);
        } else {
            const int code = upperCode(*page, ch);
            if (code < 0)
                return std::nullopt;
            out[i] = char(code);
        }
    }
    return out;
}

} // namespace plx::codepages
