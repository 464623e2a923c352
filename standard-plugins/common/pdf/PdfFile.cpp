#include "standard-plugins/common/pdf/PdfFile.h"

#include <string.h>

namespace
{

// Ten digits are what the table has for an offset.
constexpr uint64_t longestFile = 9999999999;
constexpr uint32_t mostDigits = 20;

bool IsHigh(uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(uint32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

bool IsPlain(const TavrixChar* text)
{
    for (; *text; ++text)
        if (*text < 0x20 || *text > 0x7E)
            return false;
    return true;
}

void PutPlainString(PdfFile* file, const TavrixChar* text)
{
    PutText(file, "(");
    for (; *text; ++text) {
        const char letter = static_cast<char>(*text);
        if (letter == '(' || letter == ')' || letter == '\\')
            PutText(file, "\\");
        PutBytes(file, &letter, 1);
    }
    PutText(file, ")");
}

void PutUnit(PdfFile* file, uint32_t unit)
{
    static const char digits[] = "0123456789ABCDEF";
    const char hex[] = {digits[unit >> 12 & 15], digits[unit >> 8 & 15], digits[unit >> 4 & 15],
                        digits[unit & 15]};
    PutBytes(file, hex, sizeof hex);
}

void PutWideString(PdfFile* file, const TavrixChar* text)
{
    constexpr uint32_t byteOrderMark = 0xFEFF;
    constexpr uint32_t replacement = 0xFFFD;
    PutText(file, "<");
    PutUnit(file, byteOrderMark);
    for (; *text; ++text) {
        if (IsHigh(text[0]) && IsLow(text[1])) {
            PutUnit(file, text[0]);
            PutUnit(file, text[1]);
            ++text;
        } else {
            PutUnit(file, IsHigh(*text) || IsLow(*text) ? replacement : *text);
        }
    }
    PutText(file, ">");
}

} // namespace

void StartPdf(PdfFile* file, const ByteSink& sink)
{
    *file = {};
    file->sink = sink;
    // Bytes beyond ASCII near the beginning tell whoever carries the file that it is not text.
    PutText(file, "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
}

void PutBytes(PdfFile* file, const void* bytes, uint32_t count)
{
    if (file->failed)
        return;
    if (count > longestFile - file->length) {
        file->failed = true;
        file->isTooLong = true;
        return;
    }
    if (!file->sink.write(file->sink.context, bytes, count)) {
        file->failed = true;
        return;
    }
    file->length += count;
}

void PutText(PdfFile* file, const char* text)
{
    PutBytes(file, text, static_cast<uint32_t>(strlen(text)));
}

void PutNumber(PdfFile* file, uint64_t number)
{
    uint32_t digits = 1;
    for (uint64_t rest = number / 10; rest > 0; rest /= 10)
        ++digits;
    PutDigits(file, number, digits);
}

void PutDigits(PdfFile* file, uint64_t number, uint32_t digits)
{
    char text[mostDigits];
    for (uint32_t i = digits; i-- > 0; number /= 10)
        text[i] = static_cast<char>('0' + number % 10);
    PutBytes(file, text, digits);
}

void PutPoints(PdfFile* file, uint32_t hundredths)
{
    PutNumber(file, hundredths / 100);
    PutText(file, ".");
    PutDigits(file, hundredths % 100, 2);
}

void PutString(PdfFile* file, const TavrixChar* text)
{
    if (IsPlain(text))
        PutPlainString(file, text);
    else
        PutWideString(file, text);
}

void BeginObject(PdfFile* file, uint32_t number)
{
    file->offsets[number] = file->length;
    PutNumber(file, number);
    PutText(file, " 0 obj\n");
}

void EndObject(PdfFile* file)
{
    PutText(file, "\nendobj\n");
}

bool FinishPdf(PdfFile* file, uint32_t count, uint32_t root, uint32_t info)
{
    const uint64_t table = file->length;
    PutText(file, "xref\n0 ");
    PutNumber(file, count + 1);
    // Every line of the table has twenty bytes, the two at its end among them.
    PutText(file, "\n0000000000 65535 f \n");
    for (uint32_t number = 1; number <= count; ++number) {
        PutDigits(file, file->offsets[number], 10);
        PutText(file, " 00000 n \n");
    }
    PutText(file, "trailer\n<< /Size ");
    PutNumber(file, count + 1);
    PutText(file, " /Root ");
    PutNumber(file, root);
    PutText(file, " 0 R /Info ");
    PutNumber(file, info);
    PutText(file, " 0 R >>\nstartxref\n");
    PutNumber(file, table);
    PutText(file, "\n%%EOF\n");
    return !file->failed;
}
