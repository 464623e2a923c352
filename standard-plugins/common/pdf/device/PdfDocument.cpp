#include "standard-plugins/common/pdf/device/PdfDocument.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

// The objects in the order in which they stand in the file.
enum ObjectNumber : uint32_t {
    Catalogue = 1,
    PageTree,
    Page,
    PageContent,
    PageContentLength,
    Description,
    Picture,
    PictureLength,
    ObjectCount = PictureLength
};

void PutLength(PdfFile* file, uint32_t number, uint64_t length)
{
    BeginObject(file, number);
    PutNumber(file, length);
    EndObject(file);
}

void PutPageTree(PdfFile* file, const PagePlace& place)
{
    BeginObject(file, Catalogue);
    PutText(file, "<< /Type /Catalog /Pages 2 0 R >>");
    EndObject(file);
    BeginObject(file, PageTree);
    PutText(file, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    EndObject(file);
    BeginObject(file, Page);
    PutText(file, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 ");
    PutPoints(file, place.pageWidth);
    PutText(file, " ");
    PutPoints(file, place.pageHeight);
    PutText(file, "]\n/Resources << /ProcSet [/PDF /ImageC] /XObject << /Picture 7 0 R >> >>\n"
                  "/Contents 4 0 R >>");
    EndObject(file);
}

// The picture is one unit high and wide by itself; the matrix gives it its size and place.
void PutPageContent(PdfFile* file, const PagePlace& place)
{
    BeginObject(file, PageContent);
    PutText(file, "<< /Length 5 0 R >>\nstream\n");
    const uint64_t begin = file->length;
    PutText(file, "q ");
    PutPoints(file, place.width);
    PutText(file, " 0 0 ");
    PutPoints(file, place.height);
    PutText(file, " ");
    PutPoints(file, place.left);
    PutText(file, " ");
    PutPoints(file, place.bottom);
    PutText(file, " cm /Picture Do Q");
    const uint64_t length = file->length - begin;
    PutText(file, "\nendstream");
    EndObject(file);
    PutLength(file, PageContentLength, length);
}

void PutDescription(PdfFile* file, const PdfDescription& description)
{
    BeginObject(file, Description);
    PutText(file, "<< ");
    if (description.title && description.title[0]) {
        PutText(file, "/Title ");
        PutString(file, description.title);
        PutText(file, "\n");
    }
    const SYSTEMTIME& time = description.created;
    PutText(file, "/Producer (Tavrix) /CreationDate (D:");
    PutDigits(file, time.wYear, 4);
    const WORD parts[] = {time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
    for (const WORD part : parts)
        PutDigits(file, part, 2);
    PutText(file, "Z) >>");
    EndObject(file);
}

void BeginPicture(PdfFile* file, const PdfDescription& description)
{
    BeginObject(file, Picture);
    PutText(file, "<< /Type /XObject /Subtype /Image /Width ");
    PutNumber(file, description.width);
    PutText(file, " /Height ");
    PutNumber(file, description.height);
    PutText(file, " /ColorSpace /DeviceRGB /BitsPerComponent 8\n/Filter /FlateDecode /DecodeParms "
                  "<< /Predictor 11 /Colors 3 /BitsPerComponent 8 /Columns ");
    PutNumber(file, description.width);
    PutText(file, " >>\n/Length 8 0 R >>\nstream\n");
}

} // namespace

int32_t StartDocument(PdfDocument* document, const ByteSink& sink,
                      const PdfDescription& description)
{
    *document = {};
    PdfFile* file = &document->file;
    const int32_t result = OpenImageRows(&document->rows, file, description.width);
    if (result < 0)
        return result;
    StartPdf(file, sink);
    PutPageTree(file, description.place);
    PutPageContent(file, description.place);
    PutDescription(file, description);
    BeginPicture(file, description);
    document->dataOffset = file->length;
    return file->failed ? PluginFailed : PluginDone;
}

bool PutDocumentRow(PdfDocument* document, const uint8_t* colours)
{
    return PutImageRow(&document->rows, colours);
}

bool FinishDocument(PdfDocument* document)
{
    PdfFile* file = &document->file;
    if (!FinishImageRows(&document->rows))
        return false;
    const uint64_t length = file->length - document->dataOffset;
    PutText(file, "\nendstream");
    EndObject(file);
    PutLength(file, PictureLength, length);
    return FinishPdf(file, ObjectCount, Catalogue, Description);
}

void CloseDocument(PdfDocument* document)
{
    CloseImageRows(&document->rows);
}
